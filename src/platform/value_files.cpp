// Files of one value.
#include <algorithm>
#include <cctype>
#include <cstdio>

#include "platform/file.h"
#include "platform/log.h"
#include "system_helpers.h"

int read_value_from_file(const char* path) {
  const platform::FilePtr file = platform::open_file(path, "r");
  if (!file) {
    log_error("Failed to open file.\n");
    return -1;
  }
  int value = 0;
  if (std::fscanf(file.get(), "%d", &value) == 1) return value;
  log_error("Failed to read from file.\n");
  return -1;
}

std::optional<std::string> read_strvalue_from_file(const char* path, std::size_t size) {
  const std::optional<std::string> content = platform::read_file(path);
  if (!content) {
    log_error("Failed to open file.\n");
    return std::nullopt;
  }
  const auto is_blank = [](char character) { return std::isspace(static_cast<unsigned char>(character)) != 0; };
  const auto begin = std::find_if_not(content->begin(), content->end(), is_blank);
  const auto end = std::find_if(begin, content->end(), is_blank);
  if (begin == end || size == 0) {
    log_error("Failed to read from file.\n");
    return std::nullopt;
  }
  return std::string(begin, end).substr(0, size - 1);
}

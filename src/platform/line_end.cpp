// Ends of lines.
#include <cstring>

#include "system_helpers.h"

std::size_t trim_line_end(char* text) {
  const std::size_t length = std::strlen(text);
  text[without_line_end(text).size()] = '\0';
  return length;
}

std::string_view without_line_end(std::string_view text) { return text.substr(0, text.find_first_of("\r\n")); }

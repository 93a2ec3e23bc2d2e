// Reading and storing of switches.
#include "access/switches.h"

#include <array>
#include <cstdlib>
#include <cstring>

#include "system_helpers.h"
#include "uci_access.h"

namespace {

std::optional<int> if_switch(int value) { return value == 0 || value == 1 ? std::optional(value) : std::nullopt; }

}  // namespace

std::optional<int> read_switch(const json::JsonPtr& json, const char* key) {
  json_object* value = json::member(json.get(), key);
  const json_type type = json_object_get_type(value);
  if (type == json_type_null || type == json_type_array || type == json_type_object) return std::nullopt;
  return if_switch(json_object_get_int(value));
}

std::optional<int> stored_switch(const char* package, const char* section, const char* option) {
  constexpr std::size_t kSwitchSize = 8;
  const std::optional<std::string> text = uci_read(package, section, option, kSwitchSize);
  return text ? if_switch(std::atoi(text->c_str())) : std::nullopt;
}

bool set_switch(const char* package, const char* section, const char* option, int value) {
  return UciSetOption("/etc/config", package, section, option, value == 1 ? "1" : "0") == 0;
}

std::optional<int> count_lines(const char* command) {
  std::array<char, 8> count{};
  if (execute_cmd(command, count.data(), count.size()) != 0) return std::nullopt;
  return std::atoi(std::string(count.data(), strnlen(count.data(), count.size())).c_str());
}

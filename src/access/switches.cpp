// Reading and storing of switches.
#include "access/switches.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "answer/answer.h"
#include "system_helpers.h"
#include "uci_access.h"

namespace {

std::optional<int> if_switch(std::string_view text) {
  if (text == "0") return 0;
  return text == "1" ? std::optional(1) : std::nullopt;
}

}  // namespace

std::optional<int> read_switch(const json::JsonPtr& json, const char* key) {
  json_object* value = json::member(json.get(), key);
  if (json_object_is_type(value, json_type_boolean)) return json_object_get_boolean(value);
  return value == nullptr ? std::nullopt : if_switch(json_object_get_string(value));
}

std::optional<int> stored_switch(const SwitchOption& which) {
  constexpr std::size_t kSwitchSize = 8;
  const std::optional<std::string> text = uci_read(which.package, which.section, which.option, kSwitchSize);
  return text ? if_switch(*text) : std::nullopt;
}

bool set_switch(const SwitchOption& which, int value) {
  return UciSetOption("/etc/config", which.package, which.section, which.option, value == 1 ? "1" : "0") == 0;
}

int apply_switch(const json::JsonPtr& json, const SwitchOption& which) {
  const std::optional<int> value = read_switch(json, which.key);
  if (!value) return 1;
  return set_switch(which, *value) ? 0 : 2;
}

int answer_result(FCGX_Request* request, int result) {
  if (result == 0) return answer(request, kResultOkWait20);
  return answer(request, result == 1 ? kResultUnusable : kResultFailed);
}

std::optional<int> count_lines(const char* command) {
  std::array<char, 8> count{};
  if (execute_cmd(command, count.data(), count.size()) != 0) return std::nullopt;
  return std::atoi(std::string(count.data(), strnlen(count.data(), count.size())).c_str());
}

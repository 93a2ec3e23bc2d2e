// Reading and storing of switches.
#include "access/switches.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <string>

#include "answer/answer.h"
#include "system_helpers.h"
#include "uci_section.h"

using answers::Result;

std::optional<bool> stored_switch(const SwitchOption& which) {
  constexpr std::size_t kSwitchSize = 8;
  const std::optional<std::string> text = uci::Section(which.package, which.section).read(which.option, kSwitchSize);
  return text == "0" || text == "1" ? std::optional(text == "1") : std::nullopt;
}

bool set_switch(const SwitchOption& which, bool value) {
  return uci::Section(which.package, which.section).set(which.option, value ? "1" : "0");
}

Result apply_switch(const json::Object& asked, const SwitchOption& which) {
  const std::optional<bool> value = asked.flag(which.key);
  if (!value) return Result::kUnusable;
  return set_switch(which, *value) ? Result::kOk : Result::kFailed;
}

int answer_result(FCGX_Request* request, Result result) {
  return answer(request, result == Result::kOk ? answers::wait(20) : answers::refusal(result));
}

std::optional<int> read_count(const char* command) {
  std::array<char, 8> count{};
  if (execute_cmd(command, count.data(), count.size()) != 0) return std::nullopt;
  return std::atoi(std::string(count.data(), strnlen(count.data(), count.size())).c_str());
}

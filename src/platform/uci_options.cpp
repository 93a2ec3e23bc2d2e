// Options through the `uci` command.
#include "platform/first_line.h"
#include "platform/log.h"
#include "platform/process.h"
#include "platform/text.h"
#include "system_helpers.h"

namespace {

std::string option_address(const char* package, const char* section, const char* option) {
  return std::string(package) + '.' + section + '.' + option;
}

}  // namespace

int get_uci_option_value(const char* package, const char* section, const char* option, char* out,
                         std::size_t /*length*/) {
  constexpr std::size_t kValueBuffer = 32;
  if (package == nullptr || section == nullptr || option == nullptr || out == nullptr) {
    log_debug("Parameter error!!!\n");
    return -1;
  }
  const std::string address = option_address(package, section, option);
  const platform::ProcessResult result =
      platform::run({"uci", "get", address}, {.max_output = kValueBuffer + platform::kLongestCharacter});
  if (!result.started) {
    log_debug("uci get faill!\n");
    return -1;
  }
  log_debug("buf = %s\n", ("uci get " + address).c_str());
  if (const std::optional<std::string> line = platform::first_line(result.output, kValueBuffer)) {
    line->copy(out, line->size());  // without a terminator
  }
  return 0;
}

int set_uci_option_value(const char* package, const char* section, const char* option, const char* value) {
  if (package == nullptr || section == nullptr || option == nullptr || value == nullptr) {
    log_error("Parameter error!!!\n");
    return -1;
  }
  platform::run({"uci", "set", option_address(package, section, option) + '=' + value}, {.capture_output = false});
  platform::run({"uci", "commit", package}, {.capture_output = false});
  return 0;
}

int del_uci_option_value(const char* package, const char* section, const char* option) {
  if (package == nullptr || section == nullptr || option == nullptr) {
    log_error("Parameter error!!!\n");
    return -1;
  }
  platform::run({"uci", "delete", option_address(package, section, option)}, {.capture_output = false});
  platform::run({"uci", "commit", package}, {.capture_output = false});
  return 0;
}

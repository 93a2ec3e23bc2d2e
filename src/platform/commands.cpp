// Commands with the results that their callers know.
#include <cstring>

#include "platform/first_line.h"
#include "platform/log.h"
#include "platform/process.h"
#include "platform/text.h"
#include "system_helpers.h"

namespace {

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += ' ';
    text += word;
  }
  return text;
}

// Whether a command that was run succeeded, with the message of os_system and os_exec at the place of the two.
bool has_succeeded(const platform::ProcessResult& result, const std::string& shown,
                   platform::LogPlace place = platform::LogPlace::here()) {
  if (!result.started) {
    log_debug_at(place, "exec syscmd error!");
    return false;
  }
  if (result.succeeded()) return true;
  log_debug_at(place, "exec cmd '%s' errno=%d!", shown.c_str(), (result.wait_status >> 8) & 0xff);
  return false;
}

}  // namespace

int os_system(const std::string& command) {
  if (command.empty()) {
    log_debug("shell cmd is null!");
    return 0;
  }
  return has_succeeded(platform::run_shell(command, {.capture_output = false}), command) ? 1 : 0;
}

bool os_exec(const std::vector<std::string>& argv) {
  if (argv.empty() || argv[0].empty()) {
    log_debug("shell cmd is null!");
    return false;
  }
  return has_succeeded(platform::run(argv, {.capture_output = false}), joined(argv));
}

int execute_cmd(const char* command, char* out, std::size_t out_size) {
  if (command == nullptr || *command == '\0') {
    log_error("no cammand is passed at calling execute_cmd()\n");
    return 1;
  }
  const platform::ProcessResult result =
      platform::run_shell(command, {.max_output = platform::kFirstLineBuffer + platform::kLongestCharacter});
  if (!result.started) {
    log_error("Fail to execute CMD\n");
    return 1;
  }
  const std::optional<std::string> read = platform::first_line(result.output, platform::kFirstLineBuffer);
  if (!read || out == nullptr) return 0;
  const std::string_view line = without_line_end(*read);
  if (line.size() > out_size) {
    log_error("out put buffer is not enough  to copy result  of CMD\n");
    return 0;
  }
  std::memset(out, 0, out_size);
  std::memcpy(out, line.data(), line.size());
  return 0;
}

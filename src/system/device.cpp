// The first lines of files and commands, and the mode switch.
#include "system/device.h"

#include <array>
#include <cstdio>

#include "platform/file.h"
#include "platform/log.h"
#include "platform/process.h"
#include "system_helpers.h"

namespace {

struct SwitchLine {
  int gpio;
  int state;
};
// In the order in which they are tested: the first active line counts.
constexpr std::array<SwitchLine, 3> kSwitchLines{{{38, 1}, {10, 2}, {39, 0}}};

}  // namespace

int getFileInfo(const char* path, std::string* info, std::size_t size) {
  if (path == nullptr || info == nullptr) {
    log_error("filepath or info pointer is NULL\n");
    return -1;
  }
  const std::optional<std::string> content = platform::read_file(path, size - 1);
  if (!content || content->empty()) {
    std::perror("info get fail.\n");
    return -1;
  }
  *info = content->substr(0, content->find('\n'));
  return 0;
}

int run_cmd_first_line(const char* command, std::string& line) {
  const platform::ProcessResult result = platform::run_shell(command, {.max_output = 1024});
  if (!result.started) std::perror("popen failed");
  if (result.output.empty()) return -1;
  line = result.output.substr(0, result.output.find('\n'));
  return 0;
}

int check_GpioStatus(int gpio) {
  constexpr std::size_t kStatusMax = 7;
  const platform::ProcessResult result =
      platform::run_shell("cat /sys/kernel/debug/gpio | grep gpio" + std::to_string(gpio) + " | awk '{ print $4 }'");
  if (!result.started) {
    log_debug("popen fail\n");
    return 0;
  }
  return without_line_end(result.output.substr(0, kStatusMax)) == "low" ? 1 : 0;
}

void get_switch_state(int& state) {
  state = -1;
  for (const SwitchLine& line : kSwitchLines) {
    if (check_GpioStatus(line.gpio) == 0) continue;
    state = line.state;
    return;
  }
}

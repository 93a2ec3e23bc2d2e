// One table of limits by kind of command.
#include "platform/command_limits.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace platform {
namespace {

constexpr unsigned int kReaderLimit = 20;  // of state, and everything that no row names

struct CommandLimit {
  std::string_view text;  // somewhere in the command
  unsigned int seconds;
};

// The first row whose text is found counts.
// clang-format off
constexpr std::array<CommandLimit, 18> kCommandLimits{{
    {"jose ",                20},
    {"hota -d",             900},  // downloads an image
    {"hota -v",             300},
    {"hota -c",             120},
    {"tesmirupg.sh",        300},
    {"sysupgrade",          600},
    {"firstboot",           600},
    {" scan ",               60},
    {"arp-scan",             60},
    {"wireClient.sh",        60},
    {"inetchk",              60},
    {"qvpppoe_chk_cmd.sh",  120},
    {"getIpAddr.sh",         60},
    {"reboot",               60},
    {"/etc/init.d/",        180},  // services that start others
    {"wifi ",               180},
    {"easymesh_",           180},
    {"testinfo",             60},
}};
// clang-format on

unsigned int limit_of_kind(std::string_view command) {
  const auto row = std::ranges::find_if(kCommandLimits, [command](const CommandLimit& limit) {
    return command.find(limit.text) != std::string_view::npos;
  });
  return row == kCommandLimits.end() ? kReaderLimit : row->seconds;
}

unsigned int sleeps_in(std::string_view command) {
  constexpr std::string_view kSleep = "sleep ";
  unsigned int seconds = 0;
  for (std::size_t at = command.find(kSleep); at != std::string_view::npos; at = command.find(kSleep, at)) {
    at += kSleep.size();
    seconds += static_cast<unsigned int>(std::strtoul(std::string(command.substr(at, 8)).c_str(), nullptr, 10));
  }
  return seconds;
}

}  // namespace

unsigned int limit_of_shell(std::string_view command) { return limit_of_kind(command) + sleeps_in(command); }

unsigned int limit_of_argv(const std::vector<std::string>& argv) {
  if (argv.empty()) return kReaderLimit;
  return limit_of_kind(argv[0] + ' ' + (argv.size() > 1 ? argv[1] : ""));
}

}  // namespace platform

// Hardware addresses of network interfaces, and of what they are joined to.
#include <cstdio>
#include <cstring>

#include "platform/first_line.h"
#include "platform/process.h"
#include "platform/text.h"
#include "system_helpers.h"

namespace {

constexpr std::size_t kMacTextLength = 17;

// The MAC address text that the kernel keeps in `path`. False, and a message on standard error, when there is none.
bool read_mac_file(const std::string& path, char* out) {
  const platform::ProcessResult result =
      platform::run({"cat", path}, {.max_output = platform::kFirstLineBuffer + platform::kLongestCharacter});
  if (!result.started) {
    std::perror("popen failed");
    return false;
  }
  if (result.output.empty()) {
    std::perror("fgets failed");
    return false;
  }
  const std::optional<std::string> line = platform::first_line(result.output, kMacTextLength + 1);
  if (!line || line->size() != kMacTextLength) {
    std::fputs("Invalid MAC address format\n", stderr);
    return false;
  }
  std::memcpy(out, line->c_str(), kMacTextLength + 1);
  return true;
}

}  // namespace

std::string get_link_bssid(const char* ifname) {
  const platform::ProcessResult result = platform::run(
      {"iw", "dev", ifname, "link"}, {.max_output = platform::kFirstLineBuffer + platform::kLongestCharacter});
  if (!result.started) {
    std::perror("popen failed");
    return "0000000000";
  }
  constexpr std::string_view kMark = "Connected to ";
  const std::string line = platform::first_line(result.output, platform::kFirstLineBuffer).value_or("");
  const std::size_t mark = line.find(kMark);
  if (mark == std::string::npos) return "";
  const std::string_view rest = std::string_view(line).substr(mark + kMark.size());
  const std::size_t blank = rest.find(' ');
  const std::size_t end = blank != std::string_view::npos ? blank : rest.find('(');
  if (end == std::string_view::npos || end < kMacTextLength) return "";
  const std::string_view bssid = rest.substr(0, kMacTextLength);
  return platform::upper_case(bssid.substr(0, bssid.find_first_of(" (")));
}

int get_interface_macaddr(const char* ifname, char* out) {
  return read_mac_file(std::string("/sys/class/net/") + ifname + "/address", out) ? 0 : -1;
}

int get_mld_link_macaddr(const char* link, char* out, const char* mld_ifname) {
  return read_mac_file(std::string("/sys/class/net/") + mld_ifname + '/' + link + "/address_" + link, out) ? 0 : -1;
}

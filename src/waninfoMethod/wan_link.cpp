// What sysfs tells about the WAN port.
#include "waninfoMethod/wan_link.h"

#include <cstdlib>

#include "platform/file.h"
#include "platform/log.h"
#include "platform/process.h"
#include "system_helpers.h"

namespace {

// The first piece that fgets gives a reader with a buffer of `size` bytes; empty at the end of the file.
std::string first_piece(const std::string& content, std::size_t size) {
  return content.substr(0, std::min(content.find('\n'), size - 1));
}

}  // namespace

int get_macAddr(const char* ifname, std::string& mac) {
  constexpr std::size_t kLineSize = 64;
  const std::string path = std::string("/sys/class/net/") + ifname + "/address";
  const std::optional<std::string> content = platform::read_file(path.c_str(), kLineSize);
  if (!content) {
    log_error("open file failed.");
    return 1;
  }
  if (content->empty()) {
    log_error("get macaddr fail!");
    return 1;
  }
  mac = without_line_end(first_piece(*content, kLineSize));
  return 0;
}

void get_wan_link_status(int& status) {
  constexpr std::size_t kLineSize = 8;
  const std::string path = std::string("/sys/class/net/") + kWanInterface + "/carrier";
  const std::string content = platform::read_file(path.c_str(), kLineSize).value_or("");
  if (!content.empty()) status = std::atoi(first_piece(content, kLineSize).c_str());
}

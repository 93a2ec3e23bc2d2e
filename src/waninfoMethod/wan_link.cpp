// What sysfs tells about the WAN port.
#include "waninfoMethod/wan_link.h"

#include <cstdlib>

#include "platform/file.h"
#include "platform/log.h"
#include "platform/text.h"
#include "system_helpers.h"

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
  std::string_view rest = *content;
  mac = without_line_end(platform::take_line(rest, kLineSize - 1));
  return 0;
}

void get_wan_link_status(int& status) {
  constexpr std::size_t kLineSize = 8;
  const std::string path = std::string("/sys/class/net/") + kWanInterface + "/carrier";
  const std::string content = platform::read_file(path.c_str(), kLineSize).value_or("");
  std::string_view rest = content;
  if (!content.empty()) status = std::atoi(std::string(platform::take_line(rest, kLineSize - 1)).c_str());
}

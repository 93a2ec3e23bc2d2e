// Reading of the MAC filter.
#include <algorithm>
#include <optional>
#include <string>

#include "access.h"
#include "access/mac_filter.h"
#include "access/mac_filter_lists.h"
#include "answer/json_text.h"
#include "platform/file.h"
#include "platform/log.h"
#include "uci_section.h"

namespace {

constexpr std::size_t kEnableSize = 4;

json::ObjectText entry(const std::string& description, const std::string& mac) {
  json::ObjectText object;
  object.add("description", description).add("macAddress", mac).add("enableTime", 0).add("remainTime", 0);
  return object;
}

}  // namespace

std::optional<bool> get_mac_filter_enable() {
  const auto enable = uci::Section("macfilter", "macfilter").read("enable", kEnableSize);
  return enable ? std::optional(*enable == "1") : std::nullopt;
}

int get_mac_filter_status(int& out) {
  const std::optional<bool> is_on = get_mac_filter_enable();
  if (!is_on) log_error("Failed to get macfiler_enable");
  out = is_on == true ? 1 : 0;
  return 0;
}

int parse_mac_filter_table(const char* path, json::ListText& table, int& count) {
  count = 0;
  const auto text = platform::read_file(path);
  if (!text) {
    log_error("Failed to open file: %s", path);
    return 1;
  }
  const mac_filter::Lists lists = mac_filter::parse_lists(*text);
  const std::size_t pairs = std::min(lists.names.size(), lists.macs.size());
  for (std::size_t i = 0; i < pairs; ++i) table.add(entry(lists.names[i], lists.macs[i]));
  count = static_cast<int>(pairs);
  return 0;
}

// An index of the texts that have a MAC's form.
#include "mesh/arp_table.h"

#include <utility>

#include "mesh/topology.h"
#include "platform/text.h"

namespace {

// "xx:xx:xx:xx:xx:xx", whatever stands for x.
bool has_form_of_mac(std::string_view text) {
  constexpr std::size_t kOctet = 3;
  if (text.size() != kMacLength) return false;
  for (std::size_t at = kOctet - 1; at < kMacLength; at += kOctet) {
    if (text[at] != ':') return false;
  }
  return true;
}

std::string_view second_field(std::string_view line) {
  const std::vector<std::string_view> fields = platform::pieces(line);
  return fields.size() < 2 ? std::string_view() : fields[1];
}

}  // namespace

ArpTable::ArpTable(std::string text) : text_(std::move(text)), lower_case_(platform::lower_case(text_)) {
  const std::string_view whole = lower_case_;
  for (std::size_t colon = whole.find(':'); colon != std::string_view::npos; colon = whole.find(':', colon + 1)) {
    if (colon < 2) continue;
    const std::string_view mac = whole.substr(colon - 2, kMacLength);
    if (has_form_of_mac(mac)) positions_.try_emplace(mac, colon - 2);
  }
}

std::size_t ArpTable::position_of(std::string_view mac) const {
  if (!has_form_of_mac(mac)) return lower_case_.find(mac);
  const auto found = positions_.find(mac);
  return found == positions_.end() ? std::string::npos : found->second;
}

std::optional<std::string> ArpTable::ip_of(std::string_view mac) const {
  if (mac.empty() || mac.find('\n') != std::string_view::npos) return std::nullopt;
  const std::size_t position = position_of(platform::lower_case(mac));
  if (position == std::string::npos) return std::nullopt;
  const std::size_t begin = text_.rfind('\n', position) + 1;  // 0 behind npos
  const std::string_view line = std::string_view(text_).substr(begin, text_.find('\n', position) - begin);
  std::string ip(second_field(line));
  std::erase_if(ip, [](char character) { return character == '(' || character == ')' || character == '\r'; });
  return ip.empty() ? std::nullopt : std::optional(ip.substr(0, kIpv4Length));
}

std::optional<std::string> parse_arp_table(std::string_view table, std::string_view mac) {
  return ArpTable(std::string(table)).ip_of(mac);
}

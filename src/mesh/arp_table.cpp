// Addresses of MACs, out of what `arp -a` printed.
#include <algorithm>
#include <cctype>

#include "mesh/topology.h"

namespace {

char lower(char character) { return static_cast<char>(std::tolower(static_cast<unsigned char>(character))); }

bool holds_in_any_case(std::string_view line, std::string_view text) {
  const auto same = [](char a, char b) { return lower(a) == lower(b); };
  return std::search(line.begin(), line.end(), text.begin(), text.end(), same) != line.end();
}

std::string_view second_field(std::string_view line) {
  constexpr std::string_view kBlanks = " \t";
  for (int field = 0;; ++field) {
    line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    const std::size_t end = std::min(line.find_first_of(kBlanks), line.size());
    if (field == 1 || line.empty()) return line.substr(0, end);
    line.remove_prefix(end);
  }
}

}  // namespace

std::optional<std::string> parse_arp_table(std::string_view table, std::string_view mac) {
  while (!table.empty() && !mac.empty()) {
    const std::string_view line = table.substr(0, table.find('\n'));
    table.remove_prefix(std::min(line.size() + 1, table.size()));
    if (!holds_in_any_case(line, mac)) continue;
    std::string ip(second_field(line));
    std::erase_if(ip, [](char character) { return character == '(' || character == ')' || character == '\r'; });
    return ip.empty() ? std::nullopt : std::optional(ip.substr(0, kIpv4Length));
  }
  return std::nullopt;
}

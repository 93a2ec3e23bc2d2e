// What `arp -a` printed, read once and asked for many MACs.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

class ArpTable {
 public:
  explicit ArpTable(std::string text);
  ArpTable(const ArpTable&) = delete;
  ArpTable& operator=(const ArpTable&) = delete;

  // The second field of the first line that holds `mac` in any case, brackets dropped, at most kIpv4Length bytes.
  // Takes time that does not grow with the table when `mac` is written as "xx:xx:xx:xx:xx:xx".
  [[nodiscard]] std::optional<std::string> ip_of(std::string_view mac) const;

 private:
  [[nodiscard]] std::size_t position_of(std::string_view mac) const;

  std::string text_;
  std::string lower_case_;
  std::unordered_map<std::string_view, std::size_t> positions_;  // where texts of a MAC's form first stand in it
};

// ArpTable::ip_of, of a table that is asked for one MAC.
std::optional<std::string> parse_arp_table(std::string_view table, std::string_view mac);

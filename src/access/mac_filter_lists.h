// The lists of a macfilter package, from its text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mac_filter {

struct Lists {
  std::vector<std::string> names;
  std::vector<std::string> macs;
};

// The lists of the section 'ath0', up to the next wifi-iface section, of at most kTableMax values each. Values come as
// UCI wrote them, quotes and line feeds included; of other lines counts what stands between their first and last quote.
Lists parse_lists(std::string_view text);

}  // namespace mac_filter

// Writing of the options of WPS.
#include "wireless/wps/wps_options.h"

#include "uci_section.h"
#include "wireless/wireless_options.h"

namespace wps {

const char* value_of(const Option& option, Change change) {
  switch (change) {
    case Change::kOff:
      return option.off;
    case Change::kOffBesideFilter:
      return option.off_beside_filter;
    case Change::kOn:
      break;
  }
  return option.on;
}

std::optional<std::string> write(const char* ifname, Change change, bool is_mirrored) {
  for (const Option& option : kOptions) {
    for (const uci::Section& section : wireless_sections(is_mirrored, ifname)) {
      if (section.set(option.name, value_of(option, change))) continue;
      return std::string(section.package()) + "." + ifname + "." + option.name;
    }
  }
  return std::nullopt;
}

}  // namespace wps

// Writing of one option to the packages that hold the wireless configuration.
#pragma once

#include <span>
#include <string>

#include "uci_access.h"

inline constexpr const char* kWirelessPackages[] = {"wireless", "wireless_for_easymesh"};

// The packages to write: `wireless`, and the copy for the mesh where it is mirrored.
inline std::span<const char* const> wireless_packages(bool is_mirrored) {
  return std::span(kWirelessPackages).first(is_mirrored ? 2 : 1);
}

// Sets the option in both. A section may be absent in a mesh, so a failed write is told in the log alone.
inline void set_wireless_option(bool is_mirrored, const char* section, const char* option, const std::string& value) {
  for (const char* package : wireless_packages(is_mirrored)) {
    UciSetOption(nullptr, package, section, option, value.c_str());
  }
}

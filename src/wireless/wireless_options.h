// The packages that hold the wireless configuration.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "uci_section.h"

inline constexpr const char* kWirelessPackages[] = {"wireless", "wireless_for_easymesh"};

// The packages to write: `wireless`, and the copy for the mesh where it is mirrored.
inline std::span<const char* const> wireless_packages(bool is_mirrored) {
  return std::span(kWirelessPackages).first(is_mirrored ? 2 : 1);
}

// A section in each of them.
inline std::vector<uci::Section> wireless_sections(bool is_mirrored, const char* name) {
  std::vector<uci::Section> sections;
  for (const char* package : wireless_packages(is_mirrored)) sections.emplace_back(package, name);
  return sections;
}

// Sets the option in each of them. A mesh may lack the section, so a write that fails is told in the log alone, and the
// others are made.
inline void set_wireless_option(bool is_mirrored, const char* section, const char* option, const std::string& value) {
  for (const uci::Section& place : wireless_sections(is_mirrored, section)) place.set(option, value);
}

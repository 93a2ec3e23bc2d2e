// Look-up in the override table.
#include "domain/fronthaul_override.h"

#include <algorithm>
#include <string_view>

const fronthaul::Override* find_repacd_override(const char* ifname) {
  if (ifname == nullptr) return nullptr;
  const auto* row = std::ranges::find(fronthaul::kOverrides, std::string_view(ifname),
                                      [](const fronthaul::Override& o) { return std::string_view(o.ifname); });
  return row == fronthaul::kOverrides.end() ? nullptr : row;
}

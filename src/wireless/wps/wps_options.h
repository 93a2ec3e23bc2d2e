// The options of WPS, and what each way of switching it makes of them.
#pragma once

#include <array>

#include "domain/interface_plan.h"
#include "wireless.h"

namespace wps {

struct Option {
  const char* name;
  const char* on;
  const char* off;
  const char* off_beside_filter;
};
// clang-format off
// Written in this order.
inline constexpr std::array<Option, 2> kOptions{{
    {"wps_state", "2", "1", "0"},
    {"wps_pbc",   "1", "0", "0"},
}};
// clang-format on

// The access points that have WPS: the main SSIDs of 2.4 and 5 GHz.
inline constexpr std::array<const char*, 2> kSsids{kMainSsids[0], kMainSsids[1]};

// What an option becomes.
const char* value_of(const Option& option, Change change);

}  // namespace wps

// What other areas use of the access area.
#pragma once

#include <optional>

// Whether the MAC filter is on; nullopt when that cannot be read.
std::optional<bool> get_mac_filter_enable();

// The fronthaul mirror in package repacd.
#pragma once

#include "wireless/setting/ssid_info.h"

// Of one access point; one without a row in the override table has none. Refuses before it writes. 0 on success, 1 on
// failure (logged).
int set_repacd_info(const WirelessIfaceInfo& info, const char* ifname);
// False (logged) where set_repacd_info would refuse: the access point has a row, and the security is none of the known
// codes.
bool can_set_repacd_info(const WirelessIfaceInfo& info, const char* ifname);

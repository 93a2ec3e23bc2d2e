// The fronthaul mirror in package repacd.
#pragma once

#include "wireless/setting/ssid_info.h"

// Both: 0 on success, 1 on failure (logged).

// Of one access point; one without a row in the override table has none. Refuses before it writes.
int set_repacd_info(const WirelessIfaceInfo& info, const char* ifname);
// 1 when set_repacd_info would refuse: the access point has a row, and the security is none of the known codes.
int check_repacd_info(const WirelessIfaceInfo& info, const char* ifname);

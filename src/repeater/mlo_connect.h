// The uplink over several bands at once: one multi-link (MLO) station.
#pragma once

#include <string>
#include <string_view>

#include "repeater/connect_request.h"

// All int results: 0, or 1 at the first failure, which is logged; what was written before stays.

// Writes the whole configuration for `info.multi_link_operation_enable` and commits it. An unknown variant writes only
// what all have in common.
int SetWifiConnectInfoByMlo(const RepeaterConnectInfo& info);

// The variants over 2.4+5, 5+6 and 2.4+5+6 GHz. `previous_mlo` is the variant in use so far ("0": none), `mld_mac` the
// address of the multi-link station.
int SetMlo25GInfo(const RepeaterConnectInfo& info, std::string_view previous_mlo, const std::string& mld_mac);
int SetMlo56GInfo(const RepeaterConnectInfo& info, std::string_view previous_mlo, const std::string& mld_mac);
int SetMlo256GInfo(const RepeaterConnectInfo& info, std::string_view previous_mlo, const std::string& mld_mac);

// Takes away the multi-link station and what ties the stations to it.
void ClearRepeaterMlo();

// The address of the multi-link station: the bridge's with 2 added to the second digit of its first octet, carried as
// in decimal. Other components of the platform compute it the same way, so its odd ends stay: 0E becomes 00, and F8
// an empty text.
std::string derive_mld_mac(std::string bridge_mac);

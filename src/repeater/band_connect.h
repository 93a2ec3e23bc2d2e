// The uplink on one band, or on each of the three by itself.
#pragma once

#include "repeater/connect_request.h"
#include "repeater/interface_config.h"

// All: 0, or 1 at the first failure, which is logged; what was written before stays.

// Takes away the stations and their MLD of the last connection; what is not there is no failure.
void ClearLastConnect();

// Writes the whole configuration for `info.frequency` and commits it.
int SetWifiConnectInfoByBand(const RepeaterConnectInfo& info);

// Radio, access points and station of one band.
int SetConfig24G(const RepeaterConnectInfo& info, const FollowFlags& flags);
int SetConfig5G(const RepeaterConnectInfo& info, const FollowFlags& flags);
int SetConfig6G(const RepeaterConnectInfo& info, const FollowFlags& flags);

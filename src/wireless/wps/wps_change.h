// WPS as the settings of an SSID switch it.
#pragma once

inline constexpr int kLeaveWpsAlone = -1;

// WPS off (0) or on (any other) for ath0 and ath1, unless the MAC filter is on; kLeaveWpsAlone changes nothing.
void change_wpsStatus(int wps_state, const char* ifname);

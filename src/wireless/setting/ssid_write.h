// Checking and writing of one SSID slot.
#pragma once

#include "wireless/setting/ssid_info.h"

// All int results: 0 on success, 1 on failure (logged). A mesh controller keeps a copy of its wireless options in
// wireless_for_easymesh, which the writers keep in step. They refuse before they write.

// With band steering on, the 5 and 6 GHz main SSIDs take over what the 2.4 GHz one said last, also in an earlier
// request.
struct BandSteeringTemplate {
  WirelessIfaceInfo info;
  bool is_valid = false;
};
// What the requests before have left: it belongs to the process. The request loop has one thread.
const BandSteeringTemplate& band_steering_template();

// False (logged) where set_wireless_info would fail after slots that left `model`: for a slot that does not exist, a
// password that is none, or a security that the fronthaul does not know. `model` becomes what this slot leaves.
bool can_set_wireless_info(int repeater_flag, const char* ssid_name, const WirelessIfaceInfo& info,
                           BandSteeringTemplate& model);
// One SSID slot of the repeater's (flag 1) or router's table. Nothing is written for slots without an access point.
int set_wireless_info(int repeater_flag, const char* ssid_name, const WirelessIfaceInfo& info);
// Encryption options and key. `wps_state` becomes 0 when the security rules WPS out, else stays.
int set_wireless_encryption(const WirelessIfaceInfo& info, const char* ifname, int mesh_role, int& wps_state);
// 0 for no password, 8..63 bytes of ASCII, or 64 hexadecimal digits.
int check_wifi_password(const char* password);

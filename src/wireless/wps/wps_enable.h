// WPS as the detail settings switch it: never without a radio, on open or WPA3-only or hidden networks.
#pragma once

// WPS on (1) or off (0) on the 2.4 and 5 GHz main SSIDs, as far as radio, security, hidden SSID and MAC filter permit;
// mirrored on a mesh controller. 0, or 1 on failure (logged).
int set_wps_enable(int status, int mesh_role);

// False (logged) where set_wps_enable would refuse for the radios, securities and hidden SSIDs that UCI has now. What
// cannot be read refuses nothing here.
bool can_set_wps_enable(int status);

// wireless.<ifname>.hidden: 1 or 0, 0 (logged) when it cannot be read. 0, or 1 without an interface.
int get_hidden_value(const char* ifname, int& out);

// What other areas use of the wireless area.
#pragma once

#include <string>

// All int results: 0 on success, non-zero on failure.

// wifiSecurity code of the access point `ifname`, from its UCI options.
int get_encryption_mode_value(const char* ifname, int& out);

// Configured channel of band 0, 1, 2 (2.4, 5, 6 GHz): -1 radio off, 0 automatic.
int get_channel_info(int band_index, int& out);

// Operating channel text ("36") of an interface, from `iw`.
int get_channel_by_iw_cmd(const char* ifname, std::string& out);
// Operating channel and width in MHz of an interface, from `iw`.
int get_channel_width_by_iw_cmd(const char* ifname, int& channel, int& width_mhz);

// 1 when band steering (lbd.config.Enable) is on, else 0.
int get_bandSteering_Value(int& out);

// SSID and passphrase of a mesh agent's backhaul, from the hostapd run files.
int get_agent_backhul_info(std::string& ssid, std::string& passphrase);

// WPS on (1) or off (0), from radios, SSIDs and push-button options of 2.4 and 5 GHz.
int getWpsStatus(int& out);

// 1 when the MAC filter is on, else 0.
int get_mac_filter_enable(int& out);

// Restarts the wireless stack the way the mesh state requires, in the background of a shell job. Always 0.
int wifi_reload();

// Writes `value` ("0" off, "255" on; at most 8 bytes) to the brightness of an LED such as "led_2g".
void LedForWifi(const char* value, const char* led);

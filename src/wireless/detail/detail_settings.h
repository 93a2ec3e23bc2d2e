// The radio-wide detail settings: what GET reports and POST fills, and the functions that read and write them.
#pragma once

#include <string_view>

struct WlanDetailInfo {
  int beacon_interval = 0;
  int dtim_period = 0;
  int band_width_2g = 0;  // codes of wlan_detail::kWidths
  int band_width_5g = 0;
  int band_width_6g = 0;
  int power_2g = 0;  // a percentage when read, dBm when written; 0 when the stored value is none of the table
  int power_5g = 0;
  int power_6g = 0;
  int multicast_conversion_enable = 0;
  int guest_ssid_isolation_enable = 0;
  int beamforming_5g_enable = 0;
  int beamforming_6g_enable = 0;
  int ieee802dot11r = 0;  // read only: the wireless settings write it
  int mu_mimo_enable = 0;
  int ofdma_enable = 0;
  int multi_ru_enable = 0;
  int wps_enable = 0;
  int band_steering_enable = 0;
};

inline constexpr std::string_view kDetailOkWait50 = R"({"result": 0, "version": 1, "waitTime": 50})";
inline constexpr std::string_view kDetailOkWait100 = R"({"result": 0, "version": 1, "waitTime": 100})";

// All int results: 0 on success, 1 on failure (logged).

// A mesh agent reports fixed values for what its controller decides. On failure `info` is partly filled.
int get_wlan_detail_info(WlanDetailInfo& info);

// Writes every setting but 802.11r, and starts the reload. The widths and powers must be of the tables. WPS that is
// refused writes nothing; after another failure the steps before stay written, and nothing is reloaded.
int set_wlan_detail_info(const WlanDetailInfo& info);

// wireless.<ifname>.hidden: 1 or 0, 0 when it cannot be read. Fails without an interface.
int get_hidden_value(const char* ifname, int& out);

// WPS on (1) or off (0) on the 2.4 and 5 GHz main SSIDs, as far as radio, security, hidden SSID and MAC filter permit;
// mirrored on a mesh controller.
int set_wps_enable(int status, int mesh_role);

// What set_wps_enable would refuse for the radios, securities and hidden SSIDs that UCI has now: 1, else 0. What cannot
// be read refuses nothing here.
int check_wps_enable(int status);

// Band steering on (1) or off (0): the 5 and 6 GHz main SSIDs follow the 2.4 GHz one, or get their own back. Where
// their own cannot be kept nothing is overwritten.
int set_band_steering_Info(int enable);

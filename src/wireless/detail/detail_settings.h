// The radio-wide detail settings: what GET reports and POST fills.
#pragma once

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

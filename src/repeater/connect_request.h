// What a client asks for with POST /repeater/connect.
#pragma once

#include <string>

#include "answer/json_reading.h"

// encryptType; any other value means an open network.
inline constexpr int kEncryptWpa2 = 1;
inline constexpr int kEncryptSae = 2;

// frequency: the band of a single-band uplink; 1, 2, 3 are 2.4, 5 and 6 GHz.
inline constexpr int kFrequencyAllBands = 0;

// multiLinkOperationEnable; 1, 2, 3 are the variants 2.4+5, 5+6 and 2.4+5+6 GHz.
inline constexpr int kMloOff = 0;

// tryConnectOrSettingRepeater; any other value changes nothing.
inline constexpr int kTryConnect = 0;
inline constexpr int kApplySetting = 1;

struct RepeaterConnectInfo {
  std::string ssid;   // at most 32 bytes
  std::string bssid;  // at most 17 bytes; only logged
  int frequency = 0;
  int encrypt_type = 0;
  std::string encrypt_key;  // at most 64 bytes
  int multi_ru_enable = 0;
  int multi_link_operation_enable = 0;
  int try_connect_or_setting_repeater = 0;
};

// Fills `info` from the request. 0, or 1 (logged) at the first key that is missing, too long, or a text that cannot be
// stored.
int ParseRepeaterJsonData(json::Object root, RepeaterConnectInfo& info);

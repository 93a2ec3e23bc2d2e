// What one SSID slot says.
#pragma once

#include <cstddef>
#include <string>

inline constexpr std::size_t kSsidMax = 32;  // bytes, as in the two below
inline constexpr std::size_t kPasswordMax = 64;
inline constexpr std::size_t kSsidSize = kSsidMax + 1;  // with the end, as UCI's readers count
inline constexpr std::size_t kPasswordSize = kPasswordMax + 1;

struct WirelessIfaceInfo {
  std::string ssid;  // at most 32 bytes
  int ssid_status = 0;
  std::string bssid;     // at most 31 bytes
  std::string password;  // at most 64 bytes
  int wifi_security = 0;
  int wifi_stealth = 0;
  int wpa_rekey_interval = 0;  // seconds
};

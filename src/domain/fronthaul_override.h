// The options of repacd.MAPConfig that repeat an access point's SSID and security for the mesh agents.
#pragma once

#include <array>

#include "domain/security_codes.h"

namespace fronthaul {

struct Override {
  const char* ifname;
  const char* ssid;
  const char* auth;
  const char* key;
};
inline constexpr std::array<Override, 6> kOverrides{{
    {"ath0", "FHOverrideSSID2G", "FHOverrideAuthType2G", "FHOverrideKey2G"},
    {"ath1", "FHOverrideSSID5G", "FHOverrideAuthType5G", "FHOverrideKey5G"},
    {"ath2", "FHOverrideSSID6G", "FHOverrideAuthType6G", "FHOverrideKey6G"},
    {"ath05", "AdditionalFHOverride2Gssid1", "AdditionalFHOverride2Gauth1", "AdditionalFHOverride2Gkey1"},
    {"ath15", "AdditionalFHOverride5Gssid1", "AdditionalFHOverride5Gauth1", "AdditionalFHOverride5Gkey1"},
    {"ath25", "AdditionalFHOverride6Gssid1", "AdditionalFHOverride6Gauth1", "AdditionalFHOverride6Gkey1"},
}};

// Value of the auth option by wifiSecurity code. An open access point has none; its key is a single blank.
struct Auth {
  int code;
  const char* value;
};
inline constexpr std::array<Auth, 3> kAuths{{{kSecurityWpa2, "0"}, {kSecurityWpa3, "12"}, {kSecurityMixed, "1"}}};
inline constexpr const char* kOpenKey = " ";

}  // namespace fronthaul

// The row of an access point, or nullptr.
const fronthaul::Override* find_repacd_override(const char* ifname);

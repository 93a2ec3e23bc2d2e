// The options of repacd by access point.
#include "domain/fronthaul_override.h"

#include <string>

#include <gtest/gtest.h>

namespace {

TEST(FindRepacdOverride, EveryRow) {
  const struct {
    const char* ifname;
    std::string ssid, auth, key;
  } rows[] = {
      {"ath0", "FHOverrideSSID2G", "FHOverrideAuthType2G", "FHOverrideKey2G"},
      {"ath1", "FHOverrideSSID5G", "FHOverrideAuthType5G", "FHOverrideKey5G"},
      {"ath2", "FHOverrideSSID6G", "FHOverrideAuthType6G", "FHOverrideKey6G"},
      {"ath05", "AdditionalFHOverride2Gssid1", "AdditionalFHOverride2Gauth1", "AdditionalFHOverride2Gkey1"},
      {"ath15", "AdditionalFHOverride5Gssid1", "AdditionalFHOverride5Gauth1", "AdditionalFHOverride5Gkey1"},
      {"ath25", "AdditionalFHOverride6Gssid1", "AdditionalFHOverride6Gauth1", "AdditionalFHOverride6Gkey1"},
  };
  for (const auto& row : rows) {
    const fronthaul::Override* found = find_repacd_override(row.ifname);
    ASSERT_NE(found, nullptr) << row.ifname;
    EXPECT_EQ(found->ssid, row.ssid);
    EXPECT_EQ(found->auth, row.auth);
    EXPECT_EQ(found->key, row.key);
  }
  for (const char* other : {"ath01", "ath02", "ath04", "ath", "", "ath00"}) {
    EXPECT_EQ(find_repacd_override(other), nullptr) << other;
  }
  EXPECT_EQ(find_repacd_override(nullptr), nullptr);
}

}  // namespace

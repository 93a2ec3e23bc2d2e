// The fronthaul mirror of an access point.
#include "wireless/setting/repacd_write.h"

#include <string>

#include <gtest/gtest.h>

#include "wireless/router_state.h"

namespace {

std::string map_options() { return platform::read_file("/etc/config/repacd").value_or(""); }

TEST(SetRepacdInfo, AuthByCode) {
  const struct {
    int code;
    const char* expected;
  } rows[] = {{2, "\toption FHOverrideAuthType2G '0'\n"},
              {3, "\toption FHOverrideAuthType2G '12'\n"},
              {4, "\toption FHOverrideAuthType2G '1'\n"},
              {1, "\toption FHOverrideKey2G ' '\n"}};
  for (const auto& row : rows) {
    router_state::config("repacd", "config MAPConfig 'MAPConfig'\n");
    WirelessIfaceInfo info;
    info.ssid = "name";
    info.password = "password";
    info.wifi_security = row.code;
    EXPECT_EQ(set_repacd_info(info, "ath0"), 0);
    EXPECT_NE(map_options().find(row.expected), std::string::npos) << map_options();
    EXPECT_NE(map_options().find("FHOverrideSSID2G 'name'"), std::string::npos);
    EXPECT_EQ(map_options().find("FHOverrideKey2G 'password'") != std::string::npos, row.code != 1);
    EXPECT_EQ(map_options().find("FHOverrideAuthType2G") != std::string::npos, row.code != 1);
  }
}

TEST(SetRepacdInfo, WithoutTextWithoutRowAndWithWrongCodes) {
  router_state::config("repacd", "config MAPConfig 'MAPConfig'\n");
  WirelessIfaceInfo info;
  info.wifi_security = 4;
  EXPECT_EQ(set_repacd_info(info, "ath01"), 0);
  EXPECT_EQ(map_options(), "config MAPConfig 'MAPConfig'\n");
  EXPECT_EQ(set_repacd_info(info, "ath1"), 0);
  EXPECT_EQ(map_options().find("SSID"), std::string::npos);
  EXPECT_EQ(map_options().find("Key"), std::string::npos);
  EXPECT_NE(set_repacd_info(info, nullptr), 0);
  for (const int code : {-1, 0, 5, 1000000}) {
    info.wifi_security = code;
    EXPECT_NE(set_repacd_info(info, "ath0"), 0);
    EXPECT_EQ(set_repacd_info(info, "ath02"), 0);
  }
}

}  // namespace

// The backhaul of a mesh agent, from the files that hostapd runs with.
#include <string>

#include <gtest/gtest.h>

#include "wireless.h"
#include "wireless/router_state.h"

namespace {

constexpr const char* kMld31 = "/tmp/run/hostapd-mld31.conf";

constexpr const char* kMld41 = "/tmp/run/hostapd-mld41.conf";

TEST(GetAgentBackhulInfo, TheFileFollowsBrandAndMode) {
  router_state::write(kMld31, "interface=ath12\nssid=Mesh31\nwpa_passphrase=key-31-key\n");
  router_state::write(kMld41, "wpa_passphrase=key-41-key\nssid2=x\nssid=Mesh41\n");
  for (int brand = 0; brand < 3; ++brand)
    for (const int mode : {0, 1, 2, 3}) {
      router_state::brand(brand);
      router_state::mesh(2, mode, 1);
      std::string ssid;
      std::string passphrase;
      EXPECT_EQ(get_agent_backhul_info(ssid, passphrase), 0);
      const std::string number = mode == 0 || (brand == 1 && mode == 1) ? "41" : "31";
      EXPECT_EQ(ssid, "Mesh" + number) << brand << mode;
      EXPECT_EQ(passphrase, "key-" + number + "-key") << brand << mode;
    }
}

TEST(GetAgentBackhulInfo, IsBoundedAndNeedsBoth) {
  router_state::brand(0);
  router_state::mesh(2, 1, 1);
  std::string ssid = "kept";
  std::string passphrase = "kept";
  router_state::write(kMld31, "ssid=" + std::string(40, 's') + "\nwpa_passphrase=" + std::string(80, 'p') + "\n");
  EXPECT_EQ(get_agent_backhul_info(ssid, passphrase), 0);
  EXPECT_EQ(ssid, std::string(32, 's'));
  EXPECT_EQ(passphrase, std::string(64, 'p'));
  ssid = passphrase = "kept";
  for (const char* text : {"", "ssid=Mesh\n", "wpa_passphrase=12345678\n", "#ssid=x\n#wpa_passphrase=y\n"}) {
    router_state::write(kMld31, text);
    EXPECT_NE(get_agent_backhul_info(ssid, passphrase), 0) << text;
  }
  std::filesystem::remove(kMld31);
  EXPECT_NE(get_agent_backhul_info(ssid, passphrase), 0);
  router_state::no_config("button_mesh");
  EXPECT_NE(get_agent_backhul_info(ssid, passphrase), 0);
  EXPECT_EQ(ssid, "kept");
  EXPECT_EQ(passphrase, "kept");
}

}  // namespace

// The readers that other areas use.
#include <string>

#include <gtest/gtest.h>

#include "wireless.h"
#include "wireless/router_state.h"
#include "wireless/setting/ssid_info.h"

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

TEST(GetBandSteeringValue, IsOnOnlyWhenOne) {
  for (const char* value : {"0", "1", "2", "x"}) {
    router_state::config("lbd", std::string("config config 'config'\n\toption Enable '") + value + "'\n");
    int out = -7;
    EXPECT_EQ(get_bandSteering_Value(out), 0);
    EXPECT_EQ(out, std::string(value) == "1" ? 1 : 0);
  }
  router_state::no_config("lbd");
  int out = -7;
  EXPECT_NE(get_bandSteering_Value(out), 0);
  EXPECT_EQ(out, -7);
}

TEST(GetMloValue, EveryCombinationOfLinks) {
  router_state::brand(1);
  router_state::mesh(0, 1, 0);
  for (int disabled = 0; disabled < 27; ++disabled) {  // each link on, off, or without the option
    constexpr const char* kOptions[] = {"\toption disabled '0'\n", "\toption disabled '1'\n", ""};
    const int state[] = {disabled / 9, disabled / 3 % 3, disabled % 3};
    router_state::config("wireless", std::string("config wifi-iface 'ath05'\n") + kOptions[state[0]] +
                                         "config wifi-iface 'ath15'\n" + kOptions[state[1]] +
                                         "config wifi-iface 'ath25'\n" + kOptions[state[2]]);
    const bool on[] = {state[0] == 0, state[1] == 0, state[2] == 0};
    const int expected = on[0] && on[1] && on[2] ? 4 : on[0] && on[1] ? 1 : on[0] && on[2] ? 2 : on[1] && on[2] ? 3 : 0;
    int out = -7;
    EXPECT_EQ(get_mlo_value(out), 0);
    EXPECT_EQ(out, expected) << state[0] << state[1] << state[2];
  }
}

TEST(GetMloValue, OfAMeshGoesByTheModeOnOrvaneAlone) {
  router_state::config("wireless", "");
  for (int brand = 0; brand < 3; ++brand)
    for (int role = 0; role < 3; ++role)
      for (const int mode : {0, 1, 2, 3}) {
        router_state::brand(brand);
        router_state::mesh(role, mode, 0);
        int out = -7;
        EXPECT_EQ(get_mlo_value(out), 0);
        EXPECT_EQ(out, brand != 0 || role == 0 ? 0 : mode == 1 ? 1 : 3);
      }
  router_state::brand(0);
  router_state::config("button_mesh", "config easymesh 'easymesh'\n\toption enable '1'\n");
  int out = -7;
  EXPECT_NE(get_mlo_value(out), 0);
  router_state::no_config("button_mesh");
  EXPECT_NE(get_mlo_value(out), 0);
}

TEST(GetMldLinkMac, RefusesWhatItCannotAsk) {
  std::string out = "kept";
  EXPECT_NE(get_mld_link_mac(nullptr, 0, out, 32), 0);
  EXPECT_NE(get_mld_link_mac("mld0", 0, out, 17), 0);
  EXPECT_NE(get_mld_link_mac("mld0", 0, out, 32), 0);  // no `iw` here
  EXPECT_EQ(out, "kept");
}

TEST(GetCopySsidEnable, AMissingOptionCountsAsOn) {
  router_state::config("wireless",
                       "config wifi-iface 'ath04'\n\toption disabled '1'\nconfig wifi-iface 'ath14'\n\toption disabled "
                       "'0'\nconfig wifi-iface 'ath24'\n");
  int out = -7;
  EXPECT_EQ(get_copySsid_enable("ath04", out), 0);
  EXPECT_EQ(out, 0);
  EXPECT_EQ(get_copySsid_enable("ath14", out), 0);
  EXPECT_EQ(out, 1);
  out = 0;
  EXPECT_EQ(get_copySsid_enable("ath24", out), 0);
  EXPECT_EQ(out, 1);
  EXPECT_NE(get_copySsid_enable(nullptr, out), 0);
}

}  // namespace

// Whether the uplink is there, and what becomes of the access points when it is not.
#include "repeater/uplink_monitor.h"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_log.h"
#include "fake_tools.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::section;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kDevices = "/sys/class/net";
constexpr const char* kReloadMarker = "/tmp/wifireload_restart";

class UplinkMonitor : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* tool : {"uci", "hostapd_cli", "ifconfig"}) tools_.provide(tool);
    joined(true);
    mlo("0");
  }
  void TearDown() override {
    std::filesystem::remove_all(kDevices);
    std::filesystem::remove(kReloadMarker);
    for (const char* package : {"repeater", "system"}) router_state::no_config(package);
  }
  void joined(bool is) {
    tools_.answer("wpa_cli", std::string("bssid=x\nwpa_state=") + (is ? "COMPLETED" : "SCANNING"));
  }
  static void mlo(const char* value) {
    router_state::config("repeater", section("repeater", "repeater_band", {{"mlo", value}}));
  }
  static void stations(std::initializer_list<const char*> names) {
    std::filesystem::remove_all(kDevices);
    for (const char* name : names) std::filesystem::create_directories(std::string(kDevices) + "/" + name);
  }
  FakeTools tools_;
  CapturedLog log_;
};

TEST_F(UplinkMonitor, IsToldByTheSupplicant) {
  EXPECT_EQ(GetStaInterfaceConnectStatus("ath03"), 0);
  EXPECT_THAT(tools_.calls(), ElementsAre("wpa_cli -i ath03 -p /var/run/wpa_supplicant-ath03 status"));
  joined(false);
  EXPECT_EQ(GetStaInterfaceConnectStatus("ath03"), 1);
  for (const char* output : {"", "wpa_state=", "state=COMPLETED", "Failed to connect to wpa_supplicant"}) {
    tools_.answer("wpa_cli", output);
    EXPECT_EQ(read_station_connected("ath03"), false) << output;
  }
}

TEST_F(UplinkMonitor, KnowsTheStationsThatExist) {
  EXPECT_EQ(GetStaInterfaceMask(), 0);
  stations({"ath03", "ath0", "mld7"});
  EXPECT_EQ(GetStaInterfaceMask(), kMask24g);
  stations({"ath13", "ath23"});
  EXPECT_EQ(GetStaInterfaceMask(), kMask5g | kMask6g);
}

TEST_F(UplinkMonitor, AsksTheOnlyStation) {
  for (const char* name : {"ath03", "ath13", "ath23"}) {
    stations({name});
    EXPECT_FALSE(is_uplink_down(true));
    EXPECT_THAT(tools_.calls(), ElementsAre(::testing::StartsWith(std::string("wpa_cli -i ") + name + " ")));
  }
  joined(false);
  EXPECT_TRUE(is_uplink_down(false));
}

TEST_F(UplinkMonitor, IsDownWithoutAStationAndUndecidedWithSeveral) {
  EXPECT_TRUE(is_uplink_down(false));
  stations({"ath03", "ath13"});
  EXPECT_FALSE(is_uplink_down(false));
  EXPECT_TRUE(is_uplink_down(true));
  EXPECT_THAT(tools_.calls(), IsEmpty());
}

TEST_F(UplinkMonitor, AsksTheMultiLinkStationWhereThereIsOne) {
  for (const char* value : {"1", "3", ""}) {
    mlo(value);
    EXPECT_FALSE(is_uplink_down(true));
    EXPECT_THAT(tools_.calls(), ElementsAre("wpa_cli -i mld7 -p /var/run/wpa_supplicant-mld7 status")) << value;
  }
}

// One after the other: the state that was applied last is the process's.
TEST_F(UplinkMonitor, SwitchesTheAccessPointsOnceForEachChange) {
  SetRepeaterApState(1);
  EXPECT_THAT(tools_.calls(), ElementsAre("hostapd_cli -i mld4 -p /var/run/hostapd-wifi0 disable",
                                          "hostapd_cli -i mld5 -p /var/run/hostapd-wifi1 disable",
                                          "hostapd_cli -i mld6 -p /var/run/hostapd-wifi2 disable",
                                          "uci set wireless.ath02.disabled=1", "uci set wireless.ath12.disabled=1",
                                          "uci set wireless.ath22.disabled=1", "uci commit wireless"));
  SetRepeaterApState(1);
  EXPECT_THAT(tools_.calls(), IsEmpty());
  SetRepeaterApState(0);
  EXPECT_THAT(tools_.calls(),
              ElementsAre("hostapd_cli -i mld4 -p /var/run/hostapd-wifi0 enable",
                          "hostapd_cli -i mld5 -p /var/run/hostapd-wifi1 enable",
                          "hostapd_cli -i mld6 -p /var/run/hostapd-wifi2 enable", "uci set wireless.ath02.disabled=0",
                          "uci set wireless.ath12.disabled=0", "uci set wireless.ath22.disabled=0",
                          "uci commit wireless", "ifconfig br-lan down", "ifconfig br-lan up"));
  router_state::write(kReloadMarker, "");
  SetRepeaterApState(1);
  EXPECT_THAT(tools_.calls(), ElementsAre("hostapd_cli -i mld4 -p /var/run/hostapd-wifi0 disable",
                                          "hostapd_cli -i mld5 -p /var/run/hostapd-wifi1 disable",
                                          "hostapd_cli -i mld6 -p /var/run/hostapd-wifi2 disable"));
}

TEST_F(UplinkMonitor, RunsOnARepeaterAlone) {
  router_state::no_config("system");
  EXPECT_EQ(CheckWifiConnectStatus(), 1);
  EXPECT_THAT(log_.texts(), Contains("get opmode error\n"));
  router_state::config("system", "config system\n\toption op_mode 'ap'\n");
  EXPECT_EQ(CheckWifiConnectStatus(), 0);
  EXPECT_FALSE(stop_uplink_monitor());
  router_state::config("system", "config system\n\toption op_mode 're'\n");
  EXPECT_EQ(CheckWifiConnectStatus(), 0);
  EXPECT_EQ(CheckWifiConnectStatus(), 0) << "the one that runs gives way";
  EXPECT_TRUE(stop_uplink_monitor());
  EXPECT_FALSE(stop_uplink_monitor());
}

}  // namespace

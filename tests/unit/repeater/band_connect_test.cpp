// The uplink on one band, or on each by itself.
#include "repeater/band_connect.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_log.h"
#include "fake_tools.h"
#include "uci_section.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::section;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsSupersetOf;
using ::testing::Not;

constexpr FollowFlags kNoneFollows{0, 0, 0};

class BandConnect : public ::testing::Test {
 protected:
  void SetUp() override {
    tools_.provide("uci");
    tools_.answer("ifconfig", "br-lan    Link encap:Ethernet\n          inet addr:192.168.0.1  Bcast:x  Mask:y\n");
    tools_.provide("/etc/init.d/dnsmasq");
    router_state::config("repeater", section("compatiMode", "compatiMode", {{"value", "0"}}));
    router_state::config("wireless", section("wifi-iface", "ath03", {}) + section("wifi-iface", "ath23", {}) +
                                         section("wifi-mld", "mld7", {}) + aps("0"));
  }
  void TearDown() override {
    for (const char* package : {"repeater", "wireless"}) router_state::no_config(package);
  }
  static std::string aps(const char* flag) {
    std::string text;
    for (const char* ap : {"ath02", "ath12", "ath22"}) text += section("wifi-iface", ap, {{"ssid_change", flag}});
    return text;
  }
  static RepeaterConnectInfo network(int frequency) {
    RepeaterConnectInfo info;
    info.ssid = "net";
    info.encrypt_key = "secret";
    info.frequency = frequency;
    info.encrypt_type = kEncryptWpa2;
    return info;
  }
  FakeTools tools_;
  CapturedLog log_;
};

TEST_F(BandConnect, ConfiguresRadioSecurityNetworkAndLinksOfABand) {
  EXPECT_EQ(SetConfig24G(network(1), kNoneFollows), 0);
  EXPECT_THAT(
      tools_.calls(),
      ElementsAre("uci set wireless.wifi0.disabled=0", "uci set wireless.wifi0.channel=0",
                  "uci set wireless.ath03=wifi-iface", "uci set wireless.ath03.disabled=0",
                  "uci set wireless.ath03.encryption=psk2+ccmp", "uci set wireless.ath02.mode=ap",
                  "uci set wireless.ath12.mode=ap", "uci set wireless.ath22.mode=ap", "uci set wireless.ath03.ssid=net",
                  "uci set wireless.ath03.wds=1", "uci set wireless.ath03.mode=sta", "uci set wireless.ath02.mode=ap",
                  "uci set wireless.ath02.device=wifi0", "uci set wireless.ath03.device=wifi0",
                  "uci set wireless.ath03.ifname=ath03", "uci set wireless.ath03.network=lan",
                  "uci set repeater.repeater_band.repeater_select_band=2.4GHz"));
}

TEST_F(BandConnect, HasStepsThatOnlyTheirBandNeeds) {
  const std::string radar_wait = "uci set wireless.ath1.cactimeout=0";
  const std::string any_security = "uci set wireless.ath23.en_6g_sec_comp=0";
  SetConfig24G(network(1), kNoneFollows);
  EXPECT_THAT(tools_.calls(), Not(::testing::AnyOf(Contains(radar_wait), Contains(any_security))));
  SetConfig5G(network(2), kNoneFollows);
  EXPECT_THAT(tools_.calls(), ::testing::AllOf(Contains(radar_wait), Not(Contains(any_security)),
                                               Contains("uci set wireless.ath13.device=wifi1")));
  SetConfig6G(network(3), kNoneFollows);
  EXPECT_THAT(tools_.calls(), ::testing::AllOf(Not(Contains(radar_wait)), Contains(any_security),
                                               Contains("uci set wireless.ath23.device=wifi2")));
}

TEST_F(BandConnect, TakesAwayTheLastConnection) {
  ClearLastConnect();
  for (const char* name : {"ath03", "ath23", "mld7"}) EXPECT_FALSE(uci::Section("wireless", name).exists()) << name;
  EXPECT_TRUE(uci::Section("wireless", "ath02").exists());
  ClearLastConnect();
}

TEST_F(BandConnect, TellsTheOthersOfTheBandAndCommits) {
  EXPECT_EQ(SetWifiConnectInfoByBand(network(2)), 0);
  const std::vector<std::string> calls = tools_.calls();
  ASSERT_GE(calls.size(), 8U);
  EXPECT_EQ(calls[0], "uci set repeater.repeater_band.mlo=0");
  EXPECT_EQ(calls[1], "uci set bandsteering.repeater_band.repeater_select_band=2");
  EXPECT_EQ(calls[2], "uci commit bandsteering");
  EXPECT_THAT(calls, Contains("uci set repeater.repeater_band.repeater_select_band=5GHz"));
  EXPECT_THAT(std::vector(calls.end() - 5, calls.end()),
              ElementsAre("uci set repeater.repeater_band.status=success", "uci commit repeater", "uci commit wireless",
                          "uci commit network", "uci commit dhcp"));
}

TEST_F(BandConnect, TakesEveryBandForNone) {
  EXPECT_EQ(SetWifiConnectInfoByBand(network(kFrequencyAllBands)), 0);
  EXPECT_THAT(tools_.calls(), IsSupersetOf({"uci set bandsteering.repeater_band.repeater_select_band=0",
                                            "uci set repeater.repeater_band.repeater_select_band=2.4GHz",
                                            "uci set repeater.repeater_band.repeater_select_band=5GHz",
                                            "uci set repeater.repeater_band.repeater_select_band=6GHz"}));
}

TEST_F(BandConnect, KnowsThreeBands) {
  for (const int frequency : {4, -1}) {
    EXPECT_EQ(SetWifiConnectInfoByBand(network(frequency)), 1);
    EXPECT_THAT(tools_.calls(), ElementsAre("uci set repeater.repeater_band.mlo=0"));
    EXPECT_THAT(log_.texts(), Contains("set  wifi frequency param error\n"));
  }
}

TEST_F(BandConnect, EndsWhereItCannotTellWhoFollows) {
  router_state::config("wireless", section("wifi-iface", "ath02", {}));
  EXPECT_EQ(SetWifiConnectInfoByBand(network(1)), 1);
  EXPECT_THAT(tools_.calls(), ElementsAre("uci set repeater.repeater_band.mlo=0"));
}

TEST_F(BandConnect, IsNoSuccessWithoutAnAddressOfTheLan) {
  tools_.provide("ifconfig");
  EXPECT_EQ(SetWifiConnectInfoByBand(network(1)), 1);
  EXPECT_THAT(log_.texts(), Contains("SetNetworkParamInfoToConnect error\n"));
  EXPECT_THAT(tools_.calls(), Not(Contains("uci set repeater.repeater_band.status=success")));
}

}  // namespace

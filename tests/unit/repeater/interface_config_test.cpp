// Security, SSID and key of the repeater's interfaces, command by command.
#include "repeater/interface_config.h"

#include <string>
#include <vector>

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
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr int kOpen = 0;
constexpr FollowFlags kNoneFollows{0, 0, 0};

class InterfaceConfig : public ::testing::Test {
 protected:
  void SetUp() override {
    tools_.provide("uci");
    router_state::config("repeater", section("compatiMode", "compatiMode", {{"value", "0"}}));
    wireless("");
  }
  void TearDown() override {
    for (const char* package : {"repeater", "wireless"}) router_state::no_config(package);
  }
  // Each access point with this flag, and what stands beside.
  static void wireless(const std::string& beside, const char* flag = "1") {
    std::string text = beside;
    for (const char* ap : {"ath02", "ath12", "ath22"}) text += section("wifi-iface", ap, {{"ssid_change", flag}});
    router_state::config("wireless", text);
  }
  // What uci was called with.
  std::vector<std::string> commands() {
    std::vector<std::string> calls = tools_.calls();
    for (std::string& call : calls) call.erase(0, std::string("uci ").size());
    return calls;
  }
  FakeTools tools_;
  CapturedLog log_;
};

TEST_F(InterfaceConfig, OfSaeIsTheSameOnEveryBand) {
  for (const std::string ifname : {"ath03", "ath12", "ath22"}) {
    EXPECT_EQ(SetWifiParaByEncrypt(ifname.c_str(), kEncryptSae), 0);
    const std::string set = "set wireless." + ifname;
    EXPECT_THAT(commands(),
                ElementsAre(set + "=wifi-iface", set + ".disabled=0", set + ".encryption=ccmp", set + ".sae=1",
                            set + ".force_invalid_group=1", set + ".sae_confirm_immediate=1", set + ".ieee80211w=2",
                            "delete wireless." + ifname + ".owe=1"));
  }
}

TEST_F(InterfaceConfig, OfWpa2IsWpa3OnTheAccessPointOf6Ghz) {
  SetWifiParaByEncrypt("ath12", kEncryptWpa2);
  EXPECT_THAT(commands(), ElementsAre("set wireless.ath12=wifi-iface", "set wireless.ath12.disabled=0",
                                      "set wireless.ath12.encryption=psk2+ccmp"));
  SetWifiParaByEncrypt("ath22", kEncryptWpa2);
  EXPECT_THAT(commands(), Contains("set wireless.ath22.sae=1"));
  SetWifiParaByEncrypt("ath23", kEncryptWpa2);
  EXPECT_THAT(commands(), Contains("set wireless.ath23.encryption=psk2+ccmp"));
}

TEST_F(InterfaceConfig, OfAnOpenNetworkIsEnhancedOn6Ghz) {
  for (const int type : {kOpen, 7, -1}) {
    SetWifiParaByEncrypt("ath13", type);
    EXPECT_THAT(commands(), ElementsAre("set wireless.ath13=wifi-iface", "set wireless.ath13.disabled=0",
                                        "set wireless.ath13.encryption=none"));
    for (const std::string ifname : {"ath22", "ath23"}) {
      SetWifiParaByEncrypt(ifname.c_str(), type);
      const std::string set = "set wireless." + ifname;
      EXPECT_THAT(commands(),
                  ElementsAre(set + "=wifi-iface", set + ".disabled=0", set + ".encryption=ccmp", set + ".owe=1"));
    }
  }
}

TEST_F(InterfaceConfig, LosesWhatSaeNeededWhereItWasOn) {
  wireless(section("wifi-iface", "ath03", {{"sae", "1"}}));
  const std::vector<std::string> deletes{"delete wireless.ath03.sae=1", "delete wireless.ath03.sae_confirm_immediate=1",
                                         "delete wireless.ath03.force_invalid_group=1",
                                         "delete wireless.ath03.ieee80211w=2"};
  for (const int type : {kOpen, kEncryptWpa2}) {
    SetWifiParaByEncrypt("ath03", type);
    const std::vector<std::string> all = commands();
    ASSERT_EQ(all.size(), 7U);
    EXPECT_THAT(std::vector(all.begin() + 3, all.end()), ElementsAreArray(deletes));
  }
  wireless(section("wifi-iface", "ath03", {{"sae", "10"}}));
  SetWifiParaByEncrypt("ath03", kOpen);
  EXPECT_EQ(commands().size(), 3U);
}

TEST_F(InterfaceConfig, OfAStationIsItsNetworkItsBridgingAndItsMode) {
  EXPECT_EQ(SetWifiBasicPara("ath13", "It's %s", nullptr, kNoneFollows), 0);
  EXPECT_THAT(commands(), ElementsAre("set wireless.ath13.ssid=It's %s", "set wireless.ath13.wds=1",
                                      "set wireless.ath13.mode=sta"));
  router_state::config("repeater", section("compatiMode", "compatiMode", {{"value", "1"}}));
  EXPECT_EQ(SetWifiBasicPara("ath13", "net", "key", kNoneFollows), 0);
  EXPECT_THAT(commands(),
              ElementsAre("set wireless.ath13.ssid=net", "set wireless.ath13.extap=1", "set wireless.ath13.mode=sta"));
}

TEST_F(InterfaceConfig, OfAnAccessPointIsItsModeUnlessItFollows) {
  EXPECT_EQ(SetWifiBasicPara("ath02", "net", "key", kNoneFollows), 0);
  EXPECT_THAT(commands(), ElementsAre("set wireless.ath02.mode=ap"));
  EXPECT_EQ(SetWifiBasicPara("ath02", "net", "key", {1, 0, 0}), 0);
  EXPECT_THAT(commands(), ElementsAre("set wireless.ath02.ssid=net", "set wireless.mld4.mld_ssid=net",
                                      "set wireless.ath02.key=key", "set wireless.ath02.mode=ap"));
  EXPECT_EQ(SetWifiBasicPara("ath02", "net", nullptr, {0, 1, 1}), 0);
  EXPECT_THAT(commands(), ElementsAre("set wireless.ath02.mode=ap"));
}

TEST_F(InterfaceConfig, GivesAStationItsKeyOnlyWhereItsAccessPointFollows) {
  EXPECT_EQ(SetWifiBasicPara("ath13", "net", "key", {0, 1, 1}), 0);
  EXPECT_THAT(commands(),
              ElementsAre("set wireless.ath12.key=key", "set wireless.ath13.key=key", "set wireless.ath22.key=key",
                          "set wireless.ath13.ssid=net", "set wireless.ath13.wds=1", "set wireless.ath13.mode=sta"));
  EXPECT_EQ(SetWifiBasicPara("ath13", "net", "key", {1, 0, 0}), 0);
  EXPECT_THAT(commands(), ::testing::Not(Contains("set wireless.ath13.key=key")));
}

TEST_F(InterfaceConfig, NeedsAnInterfaceThatItKnowsAndAnSsid) {
  EXPECT_EQ(SetWifiParaByEncrypt(nullptr, kEncryptSae), 1);
  EXPECT_EQ(SetWifiBasicPara(nullptr, "net", "key", kNoneFollows), 1);
  EXPECT_EQ(SetWifiBasicPara("ath03", nullptr, "key", kNoneFollows), 1);
  EXPECT_THAT(log_.texts(), ElementsAre("param is null\n", "param is NULL\n", "param is NULL\n"));
  EXPECT_EQ(SetWifiBasicPara("ath0", "net", nullptr, kNoneFollows), 1);
  EXPECT_THAT(log_.texts(), Contains("invalid iface\n"));
  EXPECT_THAT(commands(), IsEmpty());
}

TEST_F(InterfaceConfig, FollowsWhereTheAccessPointsSaySo) {
  EXPECT_EQ(read_follow_flags("caller"), (FollowFlags{1, 1, 1}));
  wireless("", "2x");
  EXPECT_EQ(read_follow_flags("caller"), (FollowFlags{2, 2, 2}));
  wireless("", "x");
  EXPECT_EQ(read_follow_flags("caller"), kNoneFollows);
  router_state::config("wireless", section("wifi-iface", "ath02", {{"ssid_change", "1"}}));
  log_.texts();
  EXPECT_EQ(read_follow_flags("caller"), std::nullopt);
  EXPECT_THAT(log_.texts(), Contains("get ath12 ssid_change error\n"));
}

TEST_F(InterfaceConfig, SecuresTheAccessPointsThatFollowAlone) {
  EXPECT_TRUE(set_security_of_following_aps(kOpen, {0, 1, 0}, "caller"));
  EXPECT_THAT(commands(), ElementsAre("set wireless.ath12=wifi-iface", "set wireless.ath12.disabled=0",
                                      "set wireless.ath12.encryption=none"));
}

}  // namespace

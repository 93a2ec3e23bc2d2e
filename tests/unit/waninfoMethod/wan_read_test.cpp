// The WAN's document: where it ends early, and what stands in it by mode.
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "answer/json_reading.h"
#include "asked_request.h"
#include "captured_log.h"
#include "fake_tools.h"
#include "handlers.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::Options;
using package_text::section;
using ::testing::Contains;
using ::testing::Not;

constexpr const char* kScript = "/etc/getIpAddr.sh";
constexpr const char* kResult = "/tmp/ipAddrResult";

class WanRead : public ::testing::Test {
 protected:
  void SetUp() override {
    tools_.provide("jose", "cat");
    tools_.provide("ip4ov6jp_info");
    tools_.provide("/usr/sbin/ip4ov6jp_info");
    tools_.provide(kScript);
    router_state::write(kResult, "");
    system("router_mode");
    wan({{"mode", "DHCP"}});
    router_state::config("ecm", section("ecm", "global", {{"acceleration", "0"}}));
    router_state::config("upnpd", section("upnpd", "config", {{"enabled", "1"}}));
  }
  void TearDown() override {
    for (const char* package : {"system", "network", "ecm", "upnpd", "button_mesh"}) router_state::no_config(package);
    std::filesystem::remove_all("/sys/class/net");
    std::filesystem::remove(kResult);
  }
  static void system(const char* button_mode) {
    router_state::config("system", std::string("config system\n\toption op_mode 'router'\n\toption button_mode '") +
                                       button_mode + "'\n");
  }
  static void wan(const Options& options) { router_state::config("network", section("interface", "wan", options)); }
  static std::string text() { return answer_of(handle_get_wanInfo_json); }
  // A member of the document's configuration, as text; "-" when it is not there.
  static std::string member(const char* key) {
    const json::Document document(text().c_str());
    const json::Object config = document->object("wanConfig");
    return config.has_any(key) ? config.text(key).value_or("?") : "-";
  }
  FakeTools tools_;
  CapturedLog log_;
};

TEST_F(WanRead, NeedsItsSections) {
  router_state::config("network", "");
  EXPECT_EQ(text(), "null");
  EXPECT_THAT(log_.texts(), Contains("Invalid network.wan section."));
  router_state::config("system", "");
  EXPECT_EQ(text(), "null");
  EXPECT_THAT(log_.texts(), Contains("Invalid system.system section."));
}

TEST_F(WanRead, NeedsNoWanOnASatellite) {
  router_state::config("network", "");
  router_state::mesh(2, 0, 1);
  EXPECT_NE(text(), "null");
  router_state::mesh(1, 0, 1);
  EXPECT_EQ(text(), "null");
}

TEST_F(WanRead, TellsTheLinkAndTheAddressesOfItsPorts) {
  router_state::write("/sys/class/net/eth1/address", "00:11:22:33:44:55\n");
  router_state::write("/sys/class/net/br-lan/address", "0123456789012345678901234\n");
  router_state::write("/sys/class/net/eth1/carrier", "1\n");
  EXPECT_EQ(member("wanMacAddress"), "00:11:22:33:44:55");
  EXPECT_EQ(member("lanMacAddress"), "0123456789012345678");
  EXPECT_EQ(member("wanLinkStatus"), "1");
  std::filesystem::remove_all("/sys/class/net");
  log_.texts();
  EXPECT_EQ(member("wanMacAddress"), "");
  EXPECT_THAT(log_.texts(), ::testing::AllOf(Contains("get wanMac fail!"), Contains("get lanMac fail!")));
}

TEST_F(WanRead, HasADefaultMtuAndOneThatPppoeTakesEightBytesOf) {
  EXPECT_EQ(member("pppoeMtu"), "1454");
  wan({{"mode", "PPPOE"}, {"mtu", "1462"}});
  EXPECT_EQ(member("pppoeMtu"), "1454");
  wan({{"mode", "PPPOE"}, {"mtu", "1500"}});
  EXPECT_EQ(member("pppoeMtu"), "1492");
}

TEST_F(WanRead, TellsTheNameOfAUserOnlyWhereThereIsOne) {
  EXPECT_EQ(member("pppoeUserName"), "-");
  EXPECT_EQ(member("pppoePassword"), "-");
  wan({{"mode", "PPPOE"}, {"username", "user@isp"}, {"password", "p"}});
  EXPECT_EQ(member("pppoeUserName"), "user@isp");
  EXPECT_EQ(member("pppoePassword"), "p");
}

TEST_F(WanRead, TellsAddressesOfARouterAlone) {
  EXPECT_NE(member("wanIpv4Address"), "-");
  EXPECT_THAT(tools_.calls(), Contains(kScript));
  wan({{"mode", "AP"}});
  EXPECT_EQ(member("wanIpv4Address"), "-");
  EXPECT_EQ(member("uPnPIGD"), "1");
  wan({{"mode", "DHCP"}});
  system("bridge_mode");
  EXPECT_EQ(member("wanIpv4Address"), "-");
  EXPECT_THAT(tools_.calls(), Not(Contains(kScript)));
}

TEST_F(WanRead, EndsWhereTheAddressScriptLeavesNothing) {
  std::filesystem::remove(kResult);
  EXPECT_EQ(member("wanIpv4Address"), "-");
  EXPECT_EQ(member("natAccelerationEnable"), "-");
  EXPECT_NE(member("pppoeMtu"), "-");
  EXPECT_THAT(log_.texts(), Contains("open /tmp/ipAddrResult fail."));
}

TEST_F(WanRead, GoesOnWithoutTheAddressScript) {
  std::filesystem::remove(kScript);
  EXPECT_EQ(member("natAccelerationEnable"), "0");
  EXPECT_THAT(log_.texts(), Contains("The getIpAddr.sh file does not exist."));
}

TEST_F(WanRead, TakesAccelerationForOnWhereItIsNotTold) {
  router_state::no_config("ecm");
  EXPECT_EQ(member("natAccelerationEnable"), "1");
  EXPECT_THAT(log_.texts(), Contains("Not found ecm.global.acceleration ,use default 1."));
}

TEST_F(WanRead, TellsTheSettingsOfATunnelInItsModeAlone) {
  EXPECT_EQ(member("aftrAddress"), "-");
  EXPECT_EQ(member("ipipUserId"), "-");
  wan({{"mode", "DS-Lite"}, {"aftr", "aftr.example"}});
  EXPECT_EQ(member("aftrAddress"), "aftr.example");
  EXPECT_EQ(member("ipipUserId"), "-");
  wan({{"mode", "IPIP6"}, {"ipipusername", "u"}, {"interfaceid", "::7"}});
  EXPECT_EQ(member("aftrAddress"), "-");
  EXPECT_EQ(member("ipipUserId"), "u");
  EXPECT_EQ(member("ipipInterfaceId"), "::7");
}

TEST_F(WanRead, TellsHowIpv6IsHad) {
  struct Row {
    const char* slaac;
    const char* dhcpv6pd;
    const char* method;
  };
  for (const Row& row : {Row{"1", "1", "1"}, Row{"0", "1", "2"}, Row{"0", "0", "0"}, Row{"x", "1", "2"}}) {
    wan({{"mode", "DHCP"}, {"slaac", row.slaac}, {"dhcpv6pd", row.dhcpv6pd}});
    EXPECT_EQ(member("wanIpv6Method"), row.method) << row.slaac << row.dhcpv6pd;
  }
}

}  // namespace

// What the WAN's method does to the LAN.
#include "waninfoMethod/lan_bridge.h"

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "uci_access.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::section;
using package_text::stored;

class LanBridge : public ::testing::Test {
 protected:
  void SetUp() override {
    router_state::brand(1);
    network("AP", "");
    router_state::config("dhcp", section("dhcp", "lan", {{"start", "100"}}));
    router_state::config("system", "config system\n\toption op_mode 'ap'\n");
  }
  void TearDown() override {
    for (const char* package : {"network", "dhcp", "system"}) router_state::no_config(package);
    std::filesystem::remove("/tmp/deviceid");
  }
  // The LAN as a router has it, with the WAN's mode and the address that it had before.
  static void network(const std::string& mode, const std::string& kept_address) {
    package_text::Options kept;
    if (!kept_address.empty()) kept.emplace_back("ipaddr1", kept_address);
    router_state::config("network", "config device\n\tlist ports 'eth0'\n\tlist ports 'eth2'\n\tlist ports 'wifi'\n\n" +
                                        section("interface", "lan",
                                                {{"proto", "static"},
                                                 {"ipaddr", "10.0.0.1"},
                                                 {"netmask", "255.0.0.0"},
                                                 {"ip6assign", "60"},
                                                 {"force_link", "1"}}) +
                                        section("interface", "wan", {{"mode", mode}}) +
                                        section("backlan", "backlan", kept));
  }
  static std::string lan(const char* option) { return stored("network", "lan", option); }
  static std::string ports() {
    std::string all;
    for (const std::string& port :
         uci_read_list("network", "@device[0]", "ports", 16, 8).value_or(std::vector<std::string>()))
      all += port + " ";
    return all;
  }
};

TEST_F(LanBridge, OfAnAccessPointAsksForItsAddressOnEveryPort) {
  turn_lan_into_client();
  EXPECT_EQ(lan("proto"), "dhcp");
  for (const char* option : {"ipaddr", "netmask", "ip6assign", "force_link"}) EXPECT_EQ(lan(option), "-") << option;
  EXPECT_EQ(lan("ieee1905managed"), "1");
  EXPECT_EQ(lan("globalIp"), "1");
  EXPECT_EQ(ports(), "wifi eth0 eth1 eth2 ");
  EXPECT_EQ(stored("dhcp", "lan", "ignore"), "1");
}

TEST_F(LanBridge, OfARouterHasItsAddressAgain) {
  turn_lan_into_client();
  UciSetOption(nullptr, "network", "backlan", "ipaddr1", "10.9.8.7");
  SetDhcpMode();
  EXPECT_EQ(lan("proto"), "static");
  EXPECT_EQ(lan("ipaddr"), "10.9.8.7");
  EXPECT_EQ(lan("netmask"), "255.255.255.0");
  EXPECT_EQ(lan("ifname"), "eth0");
  EXPECT_EQ(ports(), "wifi eth0 eth2 ");
  EXPECT_EQ(stored("dhcp", "lan", "ignore"), "-");
  EXPECT_EQ(stored("system", "@system[0]", "op_mode"), "router");
  EXPECT_EQ(stored("network", "backlan", "start"), "-");
}

TEST_F(LanBridge, HasTheBrandsAddressWhereItHadNone) {
  struct Row {
    int brand;
    const char* address;
    const char* start;
  };
  for (const Row& row : {Row{0, "192.168.0.1", "192.168.0.2"}, Row{1, "192.168.2.1", "192.168.2.2"},
                         Row{2, "192.168.0.1", "192.168.0.2"}}) {
    router_state::brand(row.brand);
    network("APMODE", "");
    SetDhcpMode();
    EXPECT_EQ(lan("ipaddr"), row.address) << row.brand;
    EXPECT_EQ(stored("network", "backlan", "start"), row.start) << row.brand;
  }
  std::filesystem::remove("/tmp/deviceid");
  network("AP", "");
  SetDhcpMode();
  EXPECT_EQ(lan("ipaddr"), "192.168.0.1");
}

TEST_F(LanBridge, KeepsItsAddressWhereItWasARouters) {
  for (const char* mode : {"STATIC", "DHCP", "", "ap"}) {
    network(mode, "10.9.8.7");
    SetDhcpMode();
    EXPECT_EQ(lan("ipaddr"), "10.0.0.1") << mode;
    EXPECT_EQ(ports(), "wifi eth0 eth2 ") << mode;
    EXPECT_EQ(stored("system", "@system[0]", "op_mode"), "ap") << mode;
  }
}

}  // namespace

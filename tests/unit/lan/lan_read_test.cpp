// Reading of the LAN settings.
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "lan/lan_faults.h"
#include "lan/lan_settings.h"
#include "platform/file.h"

namespace {

using ::testing::ElementsAre;

class LanRead : public LanFaults {};

TEST_F(LanRead, IsApOrRepeaterModeIsOneForJustThoseTwo) {
  for (const char* mode : {"ap", "re"}) {
    set_mode(mode);
    EXPECT_EQ(is_ap_or_repeater_mode(), 1) << mode;
  }
  for (const char* mode : {"router", "AP", "ap ", "rep"}) {
    set_mode(mode);
    EXPECT_EQ(is_ap_or_repeater_mode(), 0) << mode;
  }
}

TEST_F(LanRead, StoredGatewayAndDnsAreNoneWhereMissing) {
  std::string gateway;
  std::string dns1;
  std::string dns2;
  get_gateway_and_dns_by_uci(gateway, dns1, dns2);
  EXPECT_THAT((std::vector<std::string>{gateway, dns1, dns2}), ElementsAre("192.168.0.9", "8.8.8.8", "9.9.9.9"));
  write("/etc/config/network", "config interface 'lan'\n");
  get_gateway_and_dns_by_uci(gateway, dns1, dns2);
  EXPECT_THAT((std::vector<std::string>{gateway, dns1, dns2}), ElementsAre("None", "None", "None"));
}

// A tool of the test's own, first in PATH.
class LanTools : public LanFaults {
 protected:
  void SetUp() override {
    LanFaults::SetUp();
    std::filesystem::create_directories(folder_);
    setenv("PATH", (folder_ + ":" + path_).c_str(), 1);
  }
  void TearDown() override {
    setenv("PATH", path_.c_str(), 1);
    std::filesystem::remove_all(folder_);
    std::filesystem::remove(kResolvConf);
    LanFaults::TearDown();
  }
  void provide(const std::string& tool, const std::string& prints) {
    const std::string file = folder_ + "/" + tool;
    ASSERT_TRUE(platform::write_file(file.c_str(), "#!/bin/sh\ncat <<'END'\n" + prints + "END\n", 0755));
  }
  static constexpr const char* kResolvConf = "/tmp/resolv.conf.auto";

 private:
  std::string folder_ = "/tmp/lan_read_test";
  std::string path_ = getenv("PATH");
};

constexpr const char* kInterface =
    "br-lan    Link encap:Ethernet  HWaddr 00:90:FE:12:34:50\n"
    "          inet addr:192.168.7.1  Bcast:192.168.7.255  Mask:255.255.255.0\n"
    "          inet6 addr: fe80::1/64 Scope:Link\n          inet6 addr: 2001:db8::1/64 Scope:Global\n";

TEST_F(LanTools, TellARoutersLiveAddressAndNoGateway) {
  provide("ifconfig", kInterface);
  set_mode("router");
  LanSettings settings;
  ASSERT_EQ(cmd_get_lan_netowrk(settings), 0);
  EXPECT_EQ(settings.mac_address, "00:90:FE:12:34:50");
  EXPECT_EQ(settings.ipv4_address, "192.168.7.1");
  EXPECT_EQ(settings.ipv4_mask, "255.255.255.0");
  EXPECT_EQ(settings.ipv4_gateway, "");
  EXPECT_EQ(settings.global_ip_protection, 1);
  EXPECT_EQ(settings.dhcp_client, 0);
  EXPECT_EQ(settings.ipv6_auto_ip, 0);
  EXPECT_EQ(settings.ipv6_global_address, "2001:db8::1");
  EXPECT_EQ(settings.ipv6_local_address, "None") << "only with IPv6 on";
}

TEST_F(LanTools, TellAClientsLiveGatewayAndNameServers) {
  provide("ifconfig", kInterface);
  provide("ip", "default via 192.168.7.9 dev br-lan\n");
  write(kResolvConf, "nameserver 192.168.7.53\nnameserver 2001:db8::53\n");
  write("/etc/config/network",
        "config device\n\toption macaddr 'x'\n\nconfig interface 'lan'\n\toption proto 'dhcp'\n"
        "\toption globalIp '0'\n\toption ipv6 '1'\n");
  write("/etc/config/dhcp", "config dhcp 'lan'\n\toption ignore '1'\n");
  LanSettings settings;
  ASSERT_EQ(cmd_get_lan_netowrk(settings), 0);
  EXPECT_EQ(settings.dhcp_client, 1);
  EXPECT_THAT((std::vector<std::string>{settings.ipv4_gateway, settings.ipv4_dns1, settings.ipv4_dns2}),
              ElementsAre("192.168.7.9", "192.168.7.53", "None"));
  EXPECT_EQ(settings.ipv6_auto_ip, 5);
  EXPECT_THAT((std::vector<std::string>{settings.ipv6_local_address, settings.ipv6_gateway, settings.ipv6_dns1,
                                        settings.ipv6_dns2}),
              ElementsAre("fe80::1", "192.168.7.9", "2001:db8::53", "None"));
}

TEST_F(LanTools, TellARepeaterThatServesItsOwnLan) {
  provide("ifconfig", kInterface);
  set_mode("re");
  write("/etc/config/dhcp", "config dhcp 'lan'\n");
  LanSettings settings;
  ASSERT_EQ(cmd_get_lan_netowrk(settings), 0);
  EXPECT_EQ(settings.dhcp_client, 2);
}

TEST_F(LanRead, FailsOnAProtocolThatTheLanNeverHas) {
  write("/etc/config/network",
        "config interface 'lan'\n\toption proto 'pppoe'\n\toption globalIp '1'\n\toption ipv6 '0'\n");
  LanSettings settings;
  EXPECT_EQ(cmd_get_lan_netowrk(settings), 1);
  EXPECT_EQ(last_logged(), "Unkown value of\tnetwork.lan.proto by uci get api \n");
}

TEST_F(LanRead, FailsWithoutTheProtectionsOption) {
  write("/etc/config/network", "config interface 'lan'\n");
  LanSettings settings;
  EXPECT_EQ(cmd_get_lan_netowrk(settings), 1);
  EXPECT_EQ(last_logged(), "Fail to get network.lan.globalIp by uci api\n");
}

}  // namespace

// Writing and applying of the LAN settings.
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "lan/lan_faults.h"
#include "lan/lan_settings.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

class LanWrite : public LanFaults {};

TEST_F(LanWrite, WithoutAnyTheReloadIsAskedFor) {
  EXPECT_EQ(apply(), 0);
  EXPECT_EQ(last_logged(), kForkFailed);  // and nothing of a task that was pushed
}

TEST_F(LanWrite, AnOptionThatCannotBeSetFailsTheChange) {
  for (const std::string option : {"globalIp", "proto", "ipaddr", "netmask"}) {
    faults.set = option;
    EXPECT_EQ(apply(), 1) << option;
    EXPECT_EQ(last_logged(), "fail to set network.lan." + option + " by uci api\n");  // and no reload
  }
}

TEST_F(LanWrite, AGatewayThatCannotBeSetEndsTheChangeAsASuccessWithoutAReload) {
  faults.set = "gateway";
  EXPECT_EQ(apply(), 0);
  EXPECT_EQ(last_logged(), "fail to set network.lan.gateway by uci api\n");  // and no reload
  EXPECT_NE(network().find("192.168.5.1"), std::string::npos);
}

TEST_F(LanWrite, DnsThatCannotBeSetEndTheChangeAsASuccessWithoutAReload) {
  faults.add_list = "1.1.1.1";
  EXPECT_EQ(apply(), 0);
  EXPECT_EQ(last_logged(), "fail to set network.lan.dns by uci api\n");  // and no reload
  EXPECT_NE(network().find("option gateway '192.168.5.9'"), std::string::npos);
}

TEST_F(LanWrite, SetLanDnsTellsWhichStepFailed) {
  EXPECT_EQ(set_lan_dns("", "2.2.2.2"), 1);
  EXPECT_EQ(last_logged(), " First DNS can not be empty!\n");

  faults.del_list = "8.8.8.8";
  EXPECT_EQ(set_lan_dns("1.1.1.1", ""), 1);
  EXPECT_EQ(last_logged(), " fail to delete network.lan.dns[0]  by UciDelList api\n");
  faults.del_list = "9.9.9.9";
  EXPECT_EQ(set_lan_dns("1.1.1.1", ""), 1);
  EXPECT_EQ(last_logged(), " fail to delete network.lan.dns[1]  by UciDelList api\n");

  faults = {};
  faults.add_list = "1.1.1.1";
  EXPECT_EQ(set_lan_dns("1.1.1.1", "2.2.2.2"), 1);
  EXPECT_EQ(last_logged(), " fail to set network.lan.dns to first dns by UciAddList api\n");
  faults.add_list = "2.2.2.2";
  EXPECT_EQ(set_lan_dns("1.1.1.1", "2.2.2.2"), 1);
  EXPECT_EQ(last_logged(), " fail to set network.lan.dns to second dns by UciAddList api\n");
}

TEST_F(LanWrite, StaticSettingsThatCannotBeDeletedAreLoggedAndLeft) {
  faults.remove = "*";
  EXPECT_EQ(remove_lan_static_config(), 0);
  EXPECT_THAT(logged(), ElementsAre("fail to delete network.lan.ipaddr by uci api\n",
                                    "fail to delete network.lan.dns by uci api\n",
                                    "fail to delete network.lan.gateway by uci api\n",
                                    "fail to delete network.lan.netmask by uci api\n"));
  LanSettings client = settings();
  client.dhcp_client = 1;
  EXPECT_EQ(cmd_set_lan_network(client), 0);
  EXPECT_THAT(logged(), Contains(kForkFailed));
}

TEST_F(LanWrite, WithoutAChildTheLiveAddressIsUnknown) {
  faults.spawn = true;
  LanSettings read;
  EXPECT_EQ(cmd_get_lan_netowrk(read), 1);
  EXPECT_EQ(last_logged(), kNoLiveAddress);
  EXPECT_EQ(is_change_lan_setting("192.168.5.1", "255.255.255.0"), 0);

  set_mode("router");  // which takes an unknown address for an unchanged one
  EXPECT_EQ(apply(), 0);
  EXPECT_EQ(last_logged(), kNoLiveAddress);
  EXPECT_EQ(network().find("192.168.5.1"), std::string::npos);
}

TEST_F(LanWrite, AnUnreadableModeFailsTheChange) {
  constexpr const char* kNoMode = "Fail to get system.@system[0].op_mode value by uci api\n";
  write("/etc/config/system", "config system\n");
  EXPECT_EQ(apply(), 1);
  EXPECT_EQ(last_logged(), kNoMode);
  EXPECT_EQ(is_ap_or_repeater_mode(), 0);
  EXPECT_EQ(last_logged(), kNoMode);
}

TEST_F(LanWrite, ARouterIsMadeStaticInTheRecordToo) {
  set_mode("router");
  LanSettings wanted = settings();
  wanted.dhcp_client = 1;
  EXPECT_EQ(cmd_set_lan_network(wanted), 0);
  EXPECT_EQ(wanted.dhcp_client, 0);
}

}  // namespace

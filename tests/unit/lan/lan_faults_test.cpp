// Writing and applying of the LAN settings where one step fails: what is logged, what is answered, what is skipped.
#include <cerrno>
#include <filesystem>
#include <spawn.h>
#include <string>
#include <sys/types.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <uci.h>

#include "captured_log.h"
#include "lan/lan_settings.h"
#include "platform/file.h"

// The program is linked with --wrap for these functions (link.cmake).
namespace {

struct Faults {
  std::string set;       // the option that uci_set cannot set
  std::string remove;    // the option that uci_delete cannot delete, "*" for all
  std::string add_list;  // the element that uci_add_list cannot add
  std::string del_list;  // the element that uci_del_list cannot delete
  bool spawn = false;    // no child can be made
};
Faults faults;

bool hits(const std::string& fault, const char* text) {
  return !fault.empty() && text != nullptr && (fault == "*" || fault == text);
}

}  // namespace

extern "C" {
int __real_uci_set(uci_context* context, uci_ptr* pointer);
int __real_uci_delete(uci_context* context, uci_ptr* pointer);
int __real_uci_add_list(uci_context* context, uci_ptr* pointer);
int __real_uci_del_list(uci_context* context, uci_ptr* pointer);
int __real_posix_spawnp(pid_t* child, const char* file, const posix_spawn_file_actions_t* actions,
                        const posix_spawnattr_t* attributes, char* const* words, char* const* environment);

int __wrap_uci_set(uci_context* context, uci_ptr* pointer) {
  return hits(faults.set, pointer->option) ? UCI_ERR_MEM : __real_uci_set(context, pointer);
}
int __wrap_uci_delete(uci_context* context, uci_ptr* pointer) {
  return hits(faults.remove, pointer->option) ? UCI_ERR_MEM : __real_uci_delete(context, pointer);
}
int __wrap_uci_add_list(uci_context* context, uci_ptr* pointer) {
  return hits(faults.add_list, pointer->value) ? UCI_ERR_MEM : __real_uci_add_list(context, pointer);
}
int __wrap_uci_del_list(uci_context* context, uci_ptr* pointer) {
  return hits(faults.del_list, pointer->value) ? UCI_ERR_MEM : __real_uci_del_list(context, pointer);
}
int __wrap_posix_spawnp(pid_t* child, const char* file, const posix_spawn_file_actions_t* actions,
                        const posix_spawnattr_t* attributes, char* const* words, char* const* environment) {
  return faults.spawn ? EAGAIN : __real_posix_spawnp(child, file, actions, attributes, words, environment);
}
// No reload runs in these tests: "Fork failed!" tells that one was asked for.
pid_t __wrap_fork() {
  errno = EAGAIN;
  return -1;
}
}

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

constexpr const char* kForkFailed = "Fork failed!\n";
constexpr const char* kNoLiveAddress = " fial to get ipv4 addr and netsmask\n";

class LanFaults : public ::testing::Test {
 protected:
  void SetUp() override {
    faults = {};
    std::filesystem::create_directories("/etc/config");
    write("/etc/config/dhcp", "config dhcp 'lan'\n\toption ignore '1'\n");
    write("/etc/config/network",
          "config device\n\toption macaddr '00:90:FE:12:34:50'\n\nconfig interface 'lan'\n\toption proto 'static'\n"
          "\toption ipaddr '192.168.0.1'\n\toption netmask '255.255.255.0'\n\toption globalIp '1'\n\toption ipv6 '0'\n"
          "\toption gateway '192.168.0.9'\n\tlist dns '8.8.8.8'\n\tlist dns '9.9.9.9'\n");
    set_mode("ap");
  }
  void TearDown() override { faults = {}; }

  static void write(const char* path, const std::string& text) { ASSERT_TRUE(platform::write_file(path, text)); }
  static void set_mode(const std::string& mode) {
    write("/etc/config/system", "config system\n\toption op_mode '" + mode + "'\n");
  }
  static std::string network() { return platform::read_file("/etc/config/network").value_or(""); }
  static LanSettings settings() {
    LanSettings settings;
    settings.ipv4_address = "192.168.5.1";
    settings.ipv4_mask = "255.255.255.0";
    settings.ipv4_gateway = "192.168.5.9";
    settings.ipv4_dns1 = "1.1.1.1";
    settings.ipv4_dns2 = "2.2.2.2";
    return settings;
  }
  static int apply() {
    LanSettings wanted = settings();
    return cmd_set_lan_network(wanted);
  }
  // The log since it was last asked for.
  std::vector<std::string> logged() { return log_.texts(); }
  std::string last_logged() {
    const std::vector<std::string> texts = logged();
    return texts.empty() ? "(nothing)" : texts.back();
  }

 private:
  CapturedLog log_;
};

TEST_F(LanFaults, WithoutAnyTheReloadIsAskedFor) {
  EXPECT_EQ(apply(), 0);
  EXPECT_EQ(last_logged(), kForkFailed);  // and nothing of a task that was pushed
}

TEST_F(LanFaults, AnOptionThatCannotBeSetFailsTheChange) {
  for (const std::string option : {"globalIp", "proto", "ipaddr", "netmask"}) {
    faults.set = option;
    EXPECT_EQ(apply(), 1) << option;
    EXPECT_EQ(last_logged(), "fail to set network.lan." + option + " by uci api\n");  // and no reload
  }
}

TEST_F(LanFaults, AGatewayThatCannotBeSetEndsTheChangeAsASuccessWithoutAReload) {
  faults.set = "gateway";
  EXPECT_EQ(apply(), 0);
  EXPECT_EQ(last_logged(), "fail to set network.lan.gateway by uci api\n");  // and no reload
  EXPECT_NE(network().find("192.168.5.1"), std::string::npos);
}

TEST_F(LanFaults, DnsThatCannotBeSetEndTheChangeAsASuccessWithoutAReload) {
  faults.add_list = "1.1.1.1";
  EXPECT_EQ(apply(), 0);
  EXPECT_EQ(last_logged(), "fail to set network.lan.dns by uci api\n");  // and no reload
  EXPECT_NE(network().find("option gateway '192.168.5.9'"), std::string::npos);
}

TEST_F(LanFaults, SetLanDnsTellsWhichStepFailed) {
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

TEST_F(LanFaults, StaticSettingsThatCannotBeDeletedAreLoggedAndLeft) {
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

TEST_F(LanFaults, WithoutAChildTheLiveAddressIsUnknown) {
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

TEST_F(LanFaults, AnUnreadableModeFailsTheChange) {
  constexpr const char* kNoMode = "Fail to get system.@system[0].op_mode value by uci api\n";
  write("/etc/config/system", "config system\n");
  EXPECT_EQ(apply(), 1);
  EXPECT_EQ(last_logged(), kNoMode);
  EXPECT_EQ(is_ap_or_repeater_mode(), 0);
  EXPECT_EQ(last_logged(), kNoMode);
}

TEST_F(LanFaults, IsApOrRepeaterModeIsOneForJustThoseTwo) {
  for (const char* mode : {"ap", "re"}) {
    set_mode(mode);
    EXPECT_EQ(is_ap_or_repeater_mode(), 1) << mode;
  }
  for (const char* mode : {"router", "AP", "ap ", "rep"}) {
    set_mode(mode);
    EXPECT_EQ(is_ap_or_repeater_mode(), 0) << mode;
  }
}

TEST_F(LanFaults, ARouterIsMadeStaticInTheRecordToo) {
  set_mode("router");
  LanSettings wanted = settings();
  wanted.dhcp_client = 1;
  EXPECT_EQ(cmd_set_lan_network(wanted), 0);
  EXPECT_EQ(wanted.dhcp_client, 0);
}

TEST_F(LanFaults, StoredGatewayAndDnsAreNoneWhereMissing) {
  std::string gateway;
  std::string dns1;
  std::string dns2;
  get_gateway_and_dns_by_uci(gateway, dns1, dns2);
  EXPECT_THAT((std::vector<std::string>{gateway, dns1, dns2}), ElementsAre("192.168.0.9", "8.8.8.8", "9.9.9.9"));
  write("/etc/config/network", "config interface 'lan'\n");
  get_gateway_and_dns_by_uci(gateway, dns1, dns2);
  EXPECT_THAT((std::vector<std::string>{gateway, dns1, dns2}), ElementsAre("None", "None", "None"));
}

TEST_F(LanFaults, CheckAndRestoreDnsIsZeroWhereThereIsDns) {
  constexpr const char* kFile = "/tmp/resolv.conf.auto";
  constexpr const char* kBackup = "/tmp/resolv.conf.auto.bak";
  std::filesystem::remove(kFile);
  std::filesystem::remove(kBackup);
  EXPECT_EQ(check_and_restore_dns(), 1);
  EXPECT_THAT(logged(),
              ElementsAre("[/tmp/resolv.conf.auto] is null,ready restore", " [/tmp/resolv.conf.auto.bak] not exist"));

  write(kBackup, "nameserver 1.1.1.1\n");
  write(kFile, "");
  EXPECT_EQ(check_and_restore_dns(), 0);
  EXPECT_EQ(last_logged(), "DNS restore success");
  EXPECT_EQ(check_and_restore_dns(), 0);
  EXPECT_EQ(last_logged(), "/tmp/resolv.conf.auto has dns，skip check");

  std::filesystem::remove(kFile);
  faults.spawn = true;
  EXPECT_EQ(check_and_restore_dns(), 1);
  EXPECT_EQ(last_logged(), "DNS restore fail");
}

}  // namespace

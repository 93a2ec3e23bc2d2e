// What a WAN request writes, seen from its functions; the routes' tests read the packages.
#include "waninfoMethod/wan_config.h"

#include <cstring>
#include <filesystem>

#include <gtest/gtest.h>

#include "platform/file.h"
#include "uci_access.h"

namespace {

class WanConfig : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories("/etc/config");
    write_network("config interface 'wan'\n\toption mode 'STATIC'\n\toption ipaddr '192.0.2.1'\n");
  }
  void TearDown() override { std::filesystem::remove_all("/etc/config"); }

  static void write_network(const std::string& text) { ASSERT_TRUE(platform::write_file("/etc/config/network", text)); }
};

TEST_F(WanConfig, NeedsARecord) { EXPECT_EQ(set_wanInfoConfig(nullptr), 1U); }

TEST_F(WanConfig, NeedsAnOldMode) {
  EXPECT_EQ(delLastModePara(nullptr, 0), 1U);
  EXPECT_EQ(delLastModePara("", 0), 1U);
  EXPECT_EQ(delLastModePara("STATIC", 0), 1U);
  EXPECT_EQ(uci_read_or("network", "wan", "ipaddr", 16, "-"), "192.0.2.1");
}

// The stored text is compared over its own length: its beginning is enough, more than the name is another mode.
TEST_F(WanConfig, DeletesByTheStoredTextsOwnLength) {
  EXPECT_EQ(delLastModePara("STATIC2", 7), 0U);
  EXPECT_EQ(uci_read_or("network", "wan", "ipaddr", 16, "-"), "192.0.2.1");
  EXPECT_EQ(delLastModePara("STAT", 4), 0U);
  EXPECT_EQ(uci_read_or("network", "wan", "ipaddr", 16, "-"), "-");
}

TEST_F(WanConfig, WithoutAStoredModeDeletesNothing) {
  write_network("config interface 'wan'\n\toption ipaddr '192.0.2.1'\n\toption mtu '1400'\n");
  wanInfo info;
  info.wanMethod = "9";
  EXPECT_EQ(set_wanInfoConfig(&info), 0U);
  EXPECT_EQ(uci_read_or("network", "wan", "ipaddr", 16, "-"), "192.0.2.1");
  EXPECT_EQ(uci_read_or("network", "wan", "mtu", 16, "-"), "1400");
}

TEST_F(WanConfig, WithoutPackagesEndsAllTheSame) {
  std::filesystem::remove_all("/etc/config");
  wanInfo info;
  for (const char* method : {"0", "1", "2", "3", "4", "5", "6", "7", "8", ""}) {
    info.wanMethod = method;
    EXPECT_EQ(set_wanInfoConfig(&info), 0U) << method;
  }
}

}  // namespace

// The reload behind a WAN request, and the nodes of NAT acceleration.
#include "waninfoMethod/wan_reload.h"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_log.h"
#include "fake_tools.h"
#include "waits.h"
#include "wireless/router_state.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::string kEcm = "/sys/kernel/debug/ecm/";

class WanReload : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* tool : {"/etc/init.d/network", "/etc/init.d/miniupnpd", "logger"}) tools_.provide(tool);
    nodes();
  }
  void TearDown() override {
    std::filesystem::remove_all("/sys/kernel/debug/ecm");
    wan::reload_flags = {};
  }
  static void nodes() {
    for (const char* node : {"front_end_ipv4_stop", "front_end_ipv6_stop", "ecm_db/defunct_all"})
      router_state::write(kEcm + node, "-");
  }
  // What stands in the three nodes.
  static std::string written() {
    std::string all;
    for (const char* node : {"front_end_ipv4_stop", "front_end_ipv6_stop", "ecm_db/defunct_all"})
      all += platform::read_file((kEcm + node).c_str()).value_or("?");
    return all;
  }
  FakeTools tools_;
  CapturedLog log_;
};

TEST_F(WanReload, WritesANodeThatIsThere) {
  constexpr const char* kNode = "/tmp/wan_reload_test";
  router_state::write(kNode, "0");
  EXPECT_EQ(write_debugfs_node(kNode, "1"), 0);
  EXPECT_EQ(platform::read_file(kNode), "1") << "without a newline";
  std::filesystem::remove(kNode);
  EXPECT_EQ(write_debugfs_node(kNode, "1"), -1);
  EXPECT_FALSE(platform::file_exists(kNode)) << "a node is never made";
  EXPECT_EQ(write_debugfs_node("/dev/full", "1"), -1);
  EXPECT_THAT(log_.texts(), ElementsAre("Failed to open /tmp/wan_reload_test: No such file or directory",
                                        "Failed to write '1' to /dev/full: No space left on device"));
}

TEST_F(WanReload, StopsAndStartsTheAcceleration) {
  disable_ecm_acceleration();
  EXPECT_EQ(written(), "111");
  enable_ecm_acceleration();
  EXPECT_EQ(written(), "000");
}

TEST_F(WanReload, WritesTheOtherNodesWhereOneIsMissing) {
  std::filesystem::remove(kEcm + "front_end_ipv4_stop");
  disable_ecm_acceleration();
  EXPECT_EQ(written(), "?11");
  enable_ecm_acceleration();
  EXPECT_EQ(written(), "?00");
}

TEST_F(WanReload, BeginsOnlyWhenItIsTold) {
  platform::ReadyWork reload = wan::prepare_network_reload();
  ASSERT_TRUE(reload);
  EXPECT_THAT(tools_.calls(), IsEmpty());
  wan::safe_execute_network_reload(std::move(reload));
  EXPECT_THAT(tools_.awaited_calls(2),
              ElementsAre("/etc/init.d/network reload", "logger -t LAN_INFO lan reload completely finished"));
  EXPECT_THAT(log_.texts(), ::testing::Contains("Network reload task pushed to daemon safely."));
  wan::safe_execute_network_reload({});
  EXPECT_THAT(log_.texts(), IsEmpty());
}

TEST_F(WanReload, ReloadsUpnpOnceTheNetworkIsThere) {
  wan::reload_flags.upnpChangePending = true;
  wan::safe_execute_network_reload(wan::prepare_network_reload());
  EXPECT_THAT(tools_.awaited_calls(3),
              ElementsAre("/etc/init.d/network reload", HasSubstr("finished"), "/etc/init.d/miniupnpd reload"));
}

}  // namespace

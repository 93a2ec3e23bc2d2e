// The firewall's restart, waited for and not.
#include "access/firewall.h"

#include <filesystem>
#include <fstream>
#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_tools.h"

namespace {

using ::testing::ElementsAre;

TEST(Firewall, HasBeenRestartedWhenItsReloadReturns) {
  FakeTools tools;
  tools.provide("/etc/init.d/firewall");
  exec_securityReload();
  EXPECT_THAT(tools.calls(), ElementsAre("/etc/init.d/firewall restart"));
}

TEST(Firewall, IsRestartedBesideItsCaller) {
  FakeTools tools;
  tools.provide("/etc/init.d/firewall", "read line </tmp/firewall_test; firewall_is_up");
  tools.provide("firewall_is_up");
  ASSERT_EQ(mkfifo("/tmp/firewall_test", 0600), 0);
  restart_firewall();  // would wait for the line
  EXPECT_THAT(tools.awaited_calls(), ElementsAre("/etc/init.d/firewall restart"));
  std::ofstream("/tmp/firewall_test") << "go on\n";
  EXPECT_THAT(tools.awaited_calls(), ElementsAre("firewall_is_up"));
  std::filesystem::remove("/tmp/firewall_test");
}

}  // namespace

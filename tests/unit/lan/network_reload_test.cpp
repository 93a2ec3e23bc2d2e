// The LAN reload and its name servers.
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "lan/lan_faults.h"
#include "lan/lan_settings.h"

namespace {

using ::testing::ElementsAre;

class NetworkReload : public LanFaults {};

TEST_F(NetworkReload, CheckAndRestoreDnsIsZeroWhereThereIsDns) {
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

TEST_F(NetworkReload, ThatCannotBeStartedIsLoggedAndNothingMore) {
  safe_execute_network_reload();
  EXPECT_THAT(logged(), ElementsAre(kForkFailed));
}

}  // namespace

// The topology log and its bounds.
#include "mesh/topology_log.h"

#include <filesystem>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "mesh/agent_topology.h"
#include "mesh/star.h"
#include "platform/file.h"

namespace {

class TopologyLog : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::remove(kPath); }
  static std::string content() { return platform::read_file(kPath).value_or("(none)"); }
  static constexpr const char* kPath = "/tmp/topology.log";
};

TEST_F(TopologyLog, AppendsTexts) {
  topo_log("one %d\n", 1);
  topo_log("%s", "two %n\n");
  EXPECT_EQ(content(), "one 1\ntwo %n\n");
}

TEST_F(TopologyLog, DoesNotWriteATextOf1024BytesOrMore) {
  topo_log("%s", std::string(1030, 'x').c_str());
  topo_log("%s", std::string(1024, 'x').c_str());
  EXPECT_EQ(content(), "(none)");
  topo_log("%s", std::string(1023, 'x').c_str());
  EXPECT_EQ(content().size(), 1023U);
}

TEST_F(TopologyLog, IsEmptiedWhenItIsOver15Kilobytes) {
  ASSERT_TRUE(platform::write_file(kPath, std::string(15360, 'o')));
  topo_log("kept\n");
  EXPECT_EQ(content().size(), 15365U);
  topo_log("alone\n");
  EXPECT_EQ(content(), "alone\n");
  ASSERT_TRUE(platform::write_file(kPath, std::string(16000, 'o')));
  topo_log("again\n");
  EXPECT_EQ(content(), "again\n");
}

TEST_F(TopologyLog, IsNotWrittenThroughWhatIsPlantedInItsPlace) {
  namespace fs = std::filesystem;
  const char* victim = "/tmp/topology_log_victim";
  const auto expect_untouched = [victim](const char* planted) {
    topo_log("text\n");
    EXPECT_EQ(content(), "text\n") << planted;
    EXPECT_EQ(platform::read_file(victim), "kept") << planted;
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(kPath))) << planted;
    fs::remove(kPath);
  };
  ASSERT_TRUE(platform::write_file(victim, "kept"));
  fs::create_symlink(victim, kPath);
  expect_untouched("a link");
  fs::create_hard_link(victim, kPath);
  expect_untouched("another name of a file");
  ASSERT_EQ(mkfifo(kPath, 0600), 0);
  expect_untouched("a FIFO");
  fs::remove(victim);
}

TEST_F(TopologyLog, OfNoAgentsViewIsAMessageOnTheConsole) {
  ASSERT_TRUE(platform::write_file("/dev/console", ""));
  print_agent_topology(nullptr);
  EXPECT_EQ(platform::read_file("/dev/console"), "AgentTopo is NULL\n");
  EXPECT_EQ(content(), "(none)");
  std::filesystem::remove("/dev/console");
}

TEST_F(TopologyLog, ShowsTheTree) {
  TopologyInfo info = star_of(2);
  info.hasAgent = true;
  info.devices[1].ip = "1.2.3.4";
  info.devices[1].connectionType = "ETHER";
  print_topology(info);
  EXPECT_EQ(content(),
            "==================== Topology Info ====================\nHas Agent: Yes\n\n[Main Router]\n"
            "    Device: MAC: 02:00:00:00:00:10, IP: , Connection: \n        Sub-devices:\n"
            "            ├─ Child Device: MAC: 02:00:00:00:00:11, IP: 1.2.3.4, Connection: ETHER\n"
            "                Stations Info:\n                    - MAC: 0C:00:00:00:00:11, Connection Type: Wireless\n"
            "=======================================================\n");
}

}  // namespace

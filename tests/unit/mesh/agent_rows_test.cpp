// The tree of devices as the rows of the agent list.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mesh/agent_info.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Devices named by their positions; `children` by position, the first is the root.
TopologyInfo tree(const std::vector<std::vector<std::size_t>>& children) {
  TopologyInfo info;
  info.devices.resize(children.size());
  if (!children.empty()) info.root = 0;
  for (std::size_t device = 0; device < children.size(); ++device) {
    info.devices[device].mac = std::to_string(device);
    info.devices[device].connectionType = "ETHER";
    info.devices[device].children = children[device];
    for (const std::size_t child : children[device]) info.devices[child].parent = device;
  }
  return info;
}

std::vector<std::string> macs(const std::vector<AgentInfo>& rows) {
  std::vector<std::string> texts;
  for (const AgentInfo& row : rows) texts.push_back(row.macAddress);
  return texts;
}

TEST(TopologyToAgents, WalksParentsBeforeTheirChildrenInDepth) {
  const std::vector<AgentInfo> rows = topology_to_agents(tree({{1, 3}, {2}, {}, {}}));
  EXPECT_THAT(macs(rows), ElementsAre("0", "1", "2", "3"));
  for (std::size_t row = 0; row < rows.size(); ++row) EXPECT_EQ(rows[row].agentDeviceNumber, static_cast<int>(row));
  EXPECT_EQ(rows[0].connectParentMacAddress, "None");
  EXPECT_EQ(rows[2].connectParentMacAddress, "1");
  EXPECT_EQ(rows[3].connectParentMacAddress, "0");
}

TEST(TopologyToAgents, GivesTheRootNoConnection) {
  TopologyInfo info = tree({{1}, {}});
  info.devices[0].connectionType = info.devices[1].connectionType = "WLAN_MLO_5G";
  const std::vector<AgentInfo> rows = topology_to_agents(info);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].connectionType, 0);
  EXPECT_NE(rows[1].connectionType, 0);
}

TEST(TopologyToAgents, LeavesOutWhatHasNoPlaceInTheTree) {
  EXPECT_THAT(macs(topology_to_agents(tree({{}, {}}))), ElementsAre("0"));
  EXPECT_THAT(topology_to_agents(TopologyInfo{}), IsEmpty());
}

TEST(TopologyToAgents, EndsWithTheLastRow) {
  std::vector<std::vector<std::size_t>> chain(kMostAgentRows + 4);
  for (std::size_t device = 0; device + 1 < chain.size(); ++device) chain[device] = {device + 1};
  EXPECT_EQ(topology_to_agents(tree(chain)).size(), kMostAgentRows);
}

}  // namespace

// Rows of the agent list.
#include "mesh/agent_info.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mesh/star.h"

namespace {

TEST(TopologyToAgents, StopsAtSixteenRows) {
  const std::vector<AgentInfo> agents = topology_to_agents(star_of(20));
  ASSERT_EQ(agents.size(), 16U);
  EXPECT_EQ(agents[0].connectParentMacAddress, "None");
  EXPECT_EQ(agents[15].agentDeviceNumber, 15);
  EXPECT_EQ(agents[15].connectParentMacAddress, agents[0].macAddress);
  EXPECT_TRUE(topology_to_agents({}).empty());
}

TEST(AddAgentInfo, RefusesMissingArguments) {
  const AgentInfo agent;
  json::ListText array;
  EXPECT_EQ(add_agent_info_to_json_array(nullptr, &agent), 1);
  EXPECT_EQ(add_agent_info_to_json_array(&array, nullptr), 1);
  EXPECT_EQ(array.text(), "[ ]");
  EXPECT_EQ(add_agent_info_to_json_array(&array, &agent), 0);
}

TEST(TopologyToAgents, WalksDepthFirstAndLeavesOutWhatHangsBelowAFullList) {
  TopologyInfo info = star_of(20);
  info.devices[0].children = {1, 3};
  info.devices[1].children = {2};
  info.devices[2].parent = 1;
  std::vector<std::string> macs;
  for (const AgentInfo& agent : topology_to_agents(info)) macs.push_back(agent.macAddress.substr(15));
  EXPECT_EQ(macs, (std::vector<std::string>{"10", "11", "12", "13"}));
}

TEST(TopologyToAgents, FillsEveryFieldOfARow) {
  TopologyInfo info = star_of(2);
  info.devices[0].ip = "10.0.0.1";
  info.devices[0].connectionType = "WLAN_MLO_24G";  // never shown of the main router
  info.devices[1].ip = "10.0.0.2";
  info.devices[1].connectionType = "WLAN_MLO_24G_6G";
  const std::vector<AgentInfo> agents = topology_to_agents(info);
  ASSERT_EQ(agents.size(), 2U);
  EXPECT_EQ(agents[0].connectionType, 0);
  EXPECT_EQ(agents[0].connectParentMacAddress, "None");
  const AgentInfo& agent = agents[1];
  EXPECT_EQ(agent.agentDeviceNumber, 1);
  EXPECT_EQ(agent.macAddress, "02:00:00:00:00:11");
  EXPECT_EQ(agent.ipv4Address, "10.0.0.2");
  EXPECT_EQ(agent.connectParentMacAddress, "02:00:00:00:00:10");
  EXPECT_EQ(agent.location, 9);
  EXPECT_EQ(agent.locationCustom, "");
  EXPECT_EQ(agent.connectionType, 7);
  EXPECT_EQ(agent.linkQuality, 100);
}

}  // namespace

// The mesh as an agent sees it.
#include "mesh/agent_topology.h"

#include <array>
#include <cstdio>
#include <filesystem>

#include <gtest/gtest.h>

#include "mesh/client_scenarios.h"
#include "mesh/client_sources.h"
#include "mesh/topology_log.h"
#include "platform/file.h"

namespace {

TEST(ParseAgentTopology, ListsDevicesAndWiredLegacyDevices) {
  const std::string dump = platform::read_file((std::string(UNIT_FIXTURES) + "/one_agent.txt").c_str()).value_or("");
  const AgentTopo topology = parse_agent_topology(DumpLines(dump));
  EXPECT_EQ(topology.agents, (std::vector<std::string>{"02:00:00:00:00:01", "02:00:00:A1:00:20"}));
  EXPECT_EQ(topology.legacy, std::vector<std::string>{"02:00:00:0C:00:01"});
}

TEST(CollectTopologyAgentDevices, PairsEveryDeviceWithEveryOtherAgent) {
  const ClientTable wifi = parse_wifi_clients("mac_rssi:AA:BB:CC:DD:EE:01 50\noperating_band:5GHz\n");
  const auto count = [&wifi](std::vector<std::string> agents) {
    ClientTable devices;
    collect_topology_agent_devices({std::move(agents), {"02:00:00:0C:00:01"}}, wifi, devices);
    return devices.rows().size();
  };
  EXPECT_EQ(count({}), 0U);
  EXPECT_EQ(count({"02:00:00:A1:00:20"}), 2U);
  EXPECT_EQ(count({"AA:BB:CC:DD:EE:01"}), 1U);
  EXPECT_EQ(count({"AA:BB:CC:DD:EE:01", "02:00:00:A1:00:20"}), 2U);
}

TEST(ParseAgentTopology, TakesSixteenAgentsAndEveryTextOnce) {
  std::string dump;
  for (int number = 10; number < 40; ++number) {
    const std::string header = "IEEE 1905.1 device: 02:00:00:00:00:" + std::to_string(number) + ", MAP Agent\n";
    dump += header + header;
  }
  dump +=
      "Legacy Devices:\nInterface eth0:\n0C:00:00:00:00:01\n0C:00:00:00:00:01\nInterface ath0:\n0C:00:00:00:00:02\n";
  const AgentTopo topology = parse_agent_topology(DumpLines(dump));
  EXPECT_EQ(topology.agents.size(), 16U);
  EXPECT_EQ(topology.agents[15], "02:00:00:00:00:25");
  EXPECT_EQ(topology.legacy, std::vector<std::string>{"0C:00:00:00:00:01"});
}

TEST(ParseAgentTopology, ReadsMegabytesOfLegacyDevices) {
  std::string dump = "Legacy Devices:\nInterface eth0:\n";
  std::size_t count = 0;
  for (; dump.size() < 3'000'000; ++count) {
    std::array<char, 20> mac{};
    std::snprintf(mac.data(), mac.size(), "0C:00:%02zX:%02zX:%02zX:00\n", count >> 16 & 255, count >> 8 & 255,
                  count & 255);
    dump += mac.data();
  }
  EXPECT_EQ(parse_agent_topology(DumpLines(dump)).legacy.size(), count);
}

TEST(PrintAgentTopology, WritesTheViewToTheLog) {
  std::filesystem::remove("/tmp/topology.log");
  const AgentTopo topology{{"02:00:00:00:00:01", "02:00:00:A1:00:20"}, {"02:00:00:0C:00:01"}};
  print_agent_topology(&topology);
  EXPECT_EQ(platform::read_file("/tmp/topology.log").value_or(""),
            "===== Agent Topology =====\nAgent count: 2\n  Agent[0]: 02:00:00:00:00:01\n  Agent[1]: 02:00:00:A1:00:20\n"
            "Legacy wired device count: 1\n  Legacy[0]: 02:00:00:0C:00:01\n==========================\n");
}

}  // namespace

// Merging of client rows, and the parsers of their sources.
#include "mesh/client_table.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "mesh/agent_info.h"
#include "mesh/client_scenarios.h"
#include "mesh/client_sources.h"
#include "mesh/topology_log.h"
#include "platform/file.h"

namespace {

TEST(NormalizeMac, WritesTwelveDigitsInUpperCaseWithColons) {
  EXPECT_EQ(normalize_mac("aa:bb:cc:dd:ee:0f"), "AA:BB:CC:DD:EE:0F");
  EXPECT_EQ(normalize_mac("aabbccddee0f"), "AA:BB:CC:DD:EE:0F");
  EXPECT_EQ(normalize_mac("aa-bb-cc-dd-ee-0f"), "AA:BB:CC:DD:EE:0F");
  EXPECT_EQ(normalize_mac("aa:bb"), "aa:bb");
  EXPECT_EQ(normalize_mac(""), "");
}

TEST(MacEqual, ComparesDigitsInAnyCase) {
  EXPECT_TRUE(mac_equal("AA:bb:CC:dd:EE:0f", "aabbccddee0F"));
  EXPECT_FALSE(mac_equal("AA:BB", "AA:BB:CC"));
  EXPECT_TRUE(mac_equal("aabbccddee0f11", "aabbccddee0f22"));  // twelve digits count
}

ClientRecord row(int type, bool arp, bool wifi, bool topology) {
  ClientRecord record;
  record.mac = "AA:BB:CC:DD:EE:0F";
  record.connectionType = type;
  record.rssi = std::to_string(type);
  record.fromArp = arp;
  record.fromWifi = wifi;
  record.fromTopology = topology;
  return record;
}

// Topology ranks over Wi-Fi over ARP; each row: what stands, what comes, whose type and signal stay.
TEST(ClientTableMerge, RanksTheSources) {
  const ClientRecord arp = row(1, true, false, false);
  const ClientRecord wifi = row(2, false, true, false);
  const ClientRecord mesh = row(3, false, false, true);
  struct Row {
    ClientRecord stands;
    ClientRecord comes;
    int type;
    const char* rssi;
  };
  for (const Row& test : {Row{arp, arp, 1, "1"}, Row{arp, wifi, 2, "1"}, Row{arp, mesh, 3, "3"}, Row{wifi, arp, 2, "2"},
                          Row{wifi, wifi, 2, "2"}, Row{wifi, mesh, 3, "3"}, Row{mesh, arp, 3, "3"},
                          Row{mesh, wifi, 3, "3"}, Row{mesh, mesh, 3, "3"}}) {
    ClientTable table;
    client_table_merge(table, test.stands);
    client_table_merge(table, test.comes);
    ASSERT_EQ(table.rows().size(), 1U);
    EXPECT_EQ(client_table_find(table, "aabbccddee0f")->connectionType, test.type);
    EXPECT_EQ(table.rows()[0].rssi, test.rssi);
  }
}

TEST(ClientTable, KeepsThousandsOfRowsInTheirOrder) {
  ClientTable table;
  for (int number = 0; number < 5000; ++number) {
    ClientRecord record;
    std::array<char, 13> mac{};
    std::snprintf(mac.data(), mac.size(), "%012X", static_cast<unsigned int>(number));
    record.mac = mac.data();
    table.merge(record);
  }
  EXPECT_EQ(table.rows().size(), 5000U);
  EXPECT_EQ(table.rows()[4999].mac, "000000001387");
}

TEST(ParseArpClients, KeepsCompleteRowsOfTheLanBridge) {
  const ClientTable table = parse_arp_clients(
      "IP address       HW type     Flags       HW address            Mask     Device\n"
      "192.168.0.7      0x1         0x2         aa:bb:cc:dd:ee:01     *        br-lan\n"
      "192.168.0.8      0x1         0x0         aa:bb:cc:dd:ee:02     *        br-lan\n"
      "192.168.0.9      0x1         0x6         aa:bb:cc:dd:ee:03     *        br-lan\n"
      "10.0.0.1         0x1         0x2         aa:bb:cc:dd:ee:04     *        eth1\n"
      "192.168.0.10     0x1         0x2         00:00:00:00:00:00     *        br-lan\n"
      "192.168.0.11     0x1         0x2         aa:bb:cc:dd:ee:05     *        br-lan2\n"
      "short line\n");
  ASSERT_EQ(table.rows().size(), 2U);
  EXPECT_EQ(table.rows()[0].mac, "AA:BB:CC:DD:EE:01");
  EXPECT_EQ(table.rows()[0].ip, "192.168.0.7");
  EXPECT_EQ(table.rows()[1].mac, "AA:BB:CC:DD:EE:03");
}

TEST(ParseWifiClients, HasARowForEachCombinationOfBands) {
  struct Row {
    const char* bands;
    int type;
  };
  for (const Row& test :
       {Row{"2.4GHz", 1}, Row{"5GHz", 2}, Row{"6GHz", 3}, Row{"2.4GHz 5GHz", 4}, Row{"5GHz 6GHz", 5},
        Row{"2.4GHz,5GHz,6GHz", 6}, Row{"2.4GHz 6GHz", 7}, Row{"ETHER", 0}, Row{"eth0", 0}, Row{"", -1}}) {
    const ClientTable table =
        parse_wifi_clients("mac_rssi:AA:BB:CC:DD:EE:01 -45\noperating_band:" + std::string(test.bands) + "\n");
    ASSERT_EQ(table.rows().size(), 1U) << test.bands;
    EXPECT_EQ(table.rows()[0].connectionType, test.type) << test.bands;
    EXPECT_EQ(table.rows()[0].rssi, "-45");
  }
}

TEST(ParseWifiClients, KnowsAMultiLinkClientByItsMldAddress) {
  const ClientTable table = parse_wifi_clients(
      "mac_rssi:AA:BB:CC:DD:EE:01 "
      "50\noperating_band:5GHz\nmlo:Yes\nmld_addr:11:22:33:44:55:66\npartner_mac:AA:BB:CC:DD:EE:99 \n"
      "mac_rssi:AA:BB:CC:DD:EE:02 60\noperating_band:6GHz\nmlo:No\nmld_addr:11:22:33:44:55:77\n");
  ASSERT_EQ(table.rows().size(), 2U);
  EXPECT_EQ(table.rows()[0].mac, "11:22:33:44:55:66");
  EXPECT_EQ(table.rows()[1].mac, "AA:BB:CC:DD:EE:02");
}

TEST(ParseWifiClients, StopsAt127RowsAndIsSafeOnAnyText) {
  std::string text;
  for (int number = 100; number < 400; ++number) text += "mac_rssi:AA:BB:CC:DD:E" + std::to_string(number) + " 1\n";
  EXPECT_LE(parse_wifi_clients(text).rows().size(), 127U);
  for (const char* hostile : {"mlo:Yes\n", "mac_rssi", "operating_band:\nmac_rssi:", "\n\n\n", "mac_rssi:$(x) %n\n"}) {
    EXPECT_LE(parse_wifi_clients(hostile).rows().size(), 1U) << hostile;
  }
}

TEST(GetPortByMac, ReadsTheBridgesTable) {
  const char* table =
      "port no\tmac addr\t\tis local?\tageing timer\n  1\taa:bb:cc:dd:ee:01\tno\t\t   1.00\n  "
      "3\taa:bb:cc:dd:ee:02\tno\t\t   1.00\n";
  EXPECT_EQ(get_port_by_mac(table, "AA:BB:CC:DD:EE:02"), 3);
  EXPECT_EQ(get_port_by_mac(table, "AA:BB:CC:DD:EE:03"), std::nullopt);
}

TEST(GetNetworkSubnet, ReplacesTheLastPart) {
  EXPECT_EQ(get_network_subnet("192.168.7.9"), "192.168.7.0/24");
  EXPECT_EQ(get_network_subnet("nonsense"), "192.168.0.0/24");
}

TEST(ParseAgentTopology, ListsDevicesAndWiredLegacyDevices) {
  const std::string dump = platform::read_file((std::string(UNIT_FIXTURES) + "/one_agent.txt").c_str()).value_or("");
  const AgentTopo topology = parse_agent_topology(dump);
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

TopologyInfo tree_of(std::size_t count) {
  TopologyInfo info;
  info.devices.resize(count);
  info.root = 0;
  for (std::size_t number = 0; number < count; ++number) {
    info.devices[number].mac = "02:00:00:00:00:" + std::to_string(10 + number);
    if (number > 0) {
      info.devices[number].parent = 0;
      info.devices[0].children.push_back(number);
      info.devices[number].stations.push_back({"0C:00:00:00:00:" + std::to_string(10 + number), "Wireless", 2});
    }
  }
  return info;
}

TEST(CollectTopologyClients, NumbersSatellitesThroughTheWholeWalk) {
  TopologyInfo info = tree_of(4);
  info.devices[0].children = {1, 2};
  info.devices[1].children = {3};
  std::vector<int> numbers;
  for (const ClientRecord& record : collect_topology_clients(info, {})) {
    if (record.isMeshDevice) numbers.push_back(record.agentIndex);
    if (!record.isMeshDevice) {
      EXPECT_EQ(record.connectionType, 5);
    }
  }
  EXPECT_EQ(numbers, (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(collect_topology_clients(tree_of(30), {}).size(), 32U);  // 16 satellites, a client each
}

TEST(TopologyToAgents, StopsAtSixteenRows) {
  const std::vector<AgentInfo> agents = topology_to_agents(tree_of(20));
  ASSERT_EQ(agents.size(), 16U);
  EXPECT_EQ(agents[0].connectParentMacAddress, "None");
  EXPECT_EQ(agents[15].agentDeviceNumber, 15);
  EXPECT_EQ(agents[15].connectParentMacAddress, agents[0].macAddress);
  EXPECT_TRUE(topology_to_agents({}).empty());
}

TEST(AddAgentInfo, RefusesMissingArguments) {
  const AgentInfo agent;
  const json::JsonPtr array = json::new_array();
  EXPECT_EQ(add_agent_info_to_json_array(nullptr, &agent), 1);
  EXPECT_EQ(add_agent_info_to_json_array(array.get(), nullptr), 1);
  EXPECT_EQ(add_agent_info_to_json_array(array.get(), &agent), 0);
}

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

TEST_F(TopologyLog, ShowsTheTree) {
  TopologyInfo info = tree_of(2);
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

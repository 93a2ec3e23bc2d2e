// Whole dumps to trees.
#include "mesh/topology.h"

#include <gtest/gtest.h>

#include "mesh/backhaul.h"
#include "platform/file.h"

namespace {

std::string fixture(const std::string& name) {
  const auto text = platform::read_file((std::string(UNIT_FIXTURES) + "/" + name + ".txt").c_str());
  EXPECT_TRUE(text) << name;
  return text.value_or("");
}

TopologySources sources(int mesh_mode = 2) {
  return {.ip_of_mac = [](const std::string&) { return std::nullopt; }, .mesh_mode = [mesh_mode] { return mesh_mode; }};
}

TopologyInfo parse(const std::string& dump, int mesh_mode = 2) { return parse_topology(dump, sources(mesh_mode)); }

std::string stations_of(const TopologyDevice& device) {
  std::string text;
  for (const TopologyStation& station : device.stations) {
    text += station.mac.substr(12) + " " + station.connectionType + " " + std::to_string(station.level) + "; ";
  }
  return text;
}

TEST(ParseTopology, OfAControllerAloneHasItsLegacyStationsButNotThoseOfTheWanPort) {
  const TopologyInfo info = parse(fixture("controller_alone"));
  ASSERT_NE(info.root_device(), nullptr);
  EXPECT_EQ(info.root_device()->mac, "02:00:00:00:00:01");
  EXPECT_EQ(info.root_device()->ip, "192.168.0.1");
  EXPECT_EQ(info.root_device()->level, 0);
  EXPECT_EQ(stations_of(*info.root_device()), "00:01 ETHER 1; 00:03 Wireless 1; ");
  EXPECT_TRUE(info.hasAgent);
}

TEST(ParseTopology, PutsAgentsOfTheControllerAtLevelOne) {
  const TopologyInfo info = parse(fixture("one_agent"));
  ASSERT_EQ(info.devices.size(), 2U);
  const TopologyDevice& agent = info.devices[1];
  EXPECT_EQ(agent.level, 1);
  EXPECT_EQ(agent.parent, info.root);
  EXPECT_EQ(agent.connectionType, "WLAN_MLO_5G_6G");
  EXPECT_EQ(info.root_device()->children, std::vector<std::size_t>{1});
}

TEST(ParseTopology, TellsTheBandsOfAStationFromTheInterfacesItIsSeenOn) {
  const TopologyInfo info = parse(fixture("one_agent"));
  // Seen on 2.4 and 5 GHz; on 6 GHz; by cable on the port below the 2.4 GHz radio; on 2.4 and 6 GHz.
  EXPECT_EQ(stations_of(info.devices[1]),
            "00:0A WLAN_MLO_24G_5G 2; 00:0B WLAN_MLO_6G 2; 00:0C ETHER 2; 00:0D WLAN_MLO_5G 2; ");
}

TEST(ParseTopology, DropsAWiredStationOfAnotherPort) {
  std::string dump = fixture("one_agent");
  const std::string wired_port = "0 (eth0)   ETHER   02:00:00:A1:00:2F";
  ASSERT_NE(dump.find(wired_port), std::string::npos);
  dump.replace(dump.find(wired_port), wired_port.size(), "0 (eth0)   ETHER   02:00:00:A1:00:2E");
  EXPECT_EQ(stations_of(parse(dump).devices[1]).find("ETHER"), std::string::npos);
}

TEST(ParseTopology, HangsChainedAgentsBelowEachOther) {
  const TopologyInfo info = parse(fixture("chained_agents"));
  ASSERT_EQ(info.devices.size(), 3U);
  EXPECT_EQ(info.devices[2].parent, 1U);
  EXPECT_EQ(info.devices[2].level, 2);
  EXPECT_EQ(info.devices[2].connectionType, "WLAN_MLO_5G_6G");
  EXPECT_EQ(stations_of(info.devices[2]), "00:14 WLAN_MLO_5G 3; ");
}

TEST(ParseTopology, TellsAWiredBackhaul) {
  EXPECT_EQ(parse(fixture("wired_backhaul")).devices[1].connectionType, "ETHER");
}

TEST(ParseTopology, KeepsAStationOnlyBehindItsDeepestDevice) {
  const TopologyInfo info = parse(fixture("duplicates"));
  EXPECT_EQ(stations_of(info.devices[0]), "");
  EXPECT_EQ(stations_of(info.devices[1]), "00:0A WLAN_MLO_5G 2; ");
  EXPECT_EQ(stations_of(info.devices[2]), "00:1E WLAN_MLO_24G 3; ");
}

TEST(ParseTopology, FollowsAChainOfTwentyDevices) {
  const TopologyInfo info = parse(fixture("twenty_devices"));
  ASSERT_EQ(info.devices.size(), 20U);
  EXPECT_EQ(info.devices[19].level, 19);
}

TEST(ParseTopology, AsksTheArpTableForADeviceWithoutAddress) {
  const TopologySources asked{.ip_of_mac =
                                  [](const std::string& mac) {
                                    return mac == "AA:BB:CC:DD:EE:01" ? std::optional<std::string>("10.0.0.7")
                                                                      : std::nullopt;
                                  },
                              .mesh_mode = [] { return 0; }};
  const TopologyInfo info = parse_topology(
      "IEEE 1905.1 device: AA:BB:CC:DD:EE:01, MAP Agent\nIEEE 1905.1 device: AA:BB:CC:DD:EE:02, MAP Agent\n", asked);
  ASSERT_EQ(info.devices.size(), 1U);
  EXPECT_EQ(info.devices[0].ip, "10.0.0.7");
}

TEST(ParseTopology, AcceptsNoBlockBeforeTheControllerWasSeen) {
  std::string dump = fixture("one_agent");
  dump.replace(dump.find("Upstream Device: None"), 21, "Upstream Device: ????");
  const TopologyInfo info = parse(dump);
  EXPECT_TRUE(info.root_device()->children.empty());
}

TEST(ParseTopology, IgnoresHeadersWithoutAUsableMacOrAddress) {
  for (const char* dump : {"QCA IEEE 1905.1 device: , IPv4 address: 1.1.1.1\n",
                           "QCA IEEE 1905.1 device: AA:BB:CC:DD:EE:01:02, IPv4 address: 1.1.1.1\n",
                           "QCA IEEE 1905.1 device: AA:BB:CC:DD:EE:01, IPv4 address: 1111.1111.1111.1\n",
                           "QCA IEEE 1905.1 device: AA:BB:CC:DD:EE:01 IPv4 address: 1.1.1.1\n"}) {
    EXPECT_EQ(parse(dump).devices.size(), 0U) << dump;
  }
}

std::string header(const std::string& mac, const std::string& upstream) {
  return "QCA IEEE 1905.1 device: " + mac + ", IPv4 address: 10.0.0.1\n  Upstream Device: " + upstream + "\n";
}

TEST(ParseTopology, NeverMakesADeviceItsOwnAncestor) {
  const std::string a = "AA:AA:AA:AA:AA:01";
  const std::string b = "AA:AA:AA:AA:AA:02";
  const std::string root = "AA:AA:AA:AA:AA:00";
  const TopologyInfo info = parse(header(root, "None") + header(a, b) + header(b, a) + header(root, a) + header(a, a));
  ASSERT_EQ(info.devices.size(), 3U);
  EXPECT_EQ(info.devices[1].parent, 2U);
  EXPECT_EQ(info.devices[2].parent, std::nullopt);
}

TEST(ParseTopology, IsSafeOnAnyCutOfADump) {
  const std::string dump = fixture("duplicates");
  for (std::size_t length = 0; length <= dump.size(); ++length) {
    const TopologyInfo info = parse(dump.substr(0, length));
    EXPECT_LE(info.devices.size(), 3U);
  }
  EXPECT_EQ(parse("").root_device(), nullptr);
  EXPECT_EQ(parse(std::string(100000, 'x')).devices.size(), 0U);
}

TEST(ParseTopology, ReadsTenMegabytesOfDevices) {
  std::string dump = fixture("one_agent");
  for (int number = 0; dump.size() < 10'000'000; ++number) {
    std::array<char, 18> mac{};
    std::snprintf(mac.data(), mac.size(), "DD:%02X:%02X:%02X:00:00", number >> 16 & 255, number >> 8 & 255,
                  number & 255);
    dump += header(mac.data(), "02:00:00:A1:00:20") + "    Index Medium Type\n     1 WLAN2G " + mac.data() + " x\n";
  }
  EXPECT_GT(parse(dump).devices.size(), 50'000U);
}

TEST(BackhaulType, FallsBackToTheMeshMode) {
  std::string dump = fixture("one_agent");
  for (const char* medium : {"ath13            WLAN5G", "ath23            WLAN6G"}) {
    ASSERT_NE(dump.find(medium), std::string::npos);
    dump.replace(dump.find(medium), 23, "xxxx             yyyyyy");
  }
  EXPECT_EQ(parse(dump, 0).devices[1].connectionType, "WLAN_MLO_5G");
  EXPECT_EQ(parse(dump, 1).devices[1].connectionType, "WLAN_MLO_24G_5G");
  EXPECT_EQ(parse(dump, 2).devices[1].connectionType, "WLAN_MLO_5G_6G");
  EXPECT_EQ(parse(dump, -1).devices[1].connectionType, "WLAN_MLO_5G_6G");
}

TEST(BackhaulType, HasARowForEachCombinationOfBands) {
  struct Row {
    const char* rows;
    const char* type;
  };
  for (const Row& row : {Row{"eth1", "ETHER"}, Row{"WLAN2G\nWLAN5G\nWLAN6G", "WLAN_MLO_24G_5G_6G"},
                         Row{"WLAN2G\nWLAN5G", "WLAN_MLO_24G_5G"}, Row{"WLAN5G\nWLAN6G", "WLAN_MLO_5G_6G"},
                         Row{"WLAN2G", "WLAN_MLO_24G"}, Row{"WLAN5G", "WLAN_MLO_5G"}, Row{"WLAN6G", "WLAN_MLO_6G"},
                         Row{"WLAN2G\nWLAN6G", "WLAN_MLO_24G_5G"}, Row{"WLAN5G\neth1", "WLAN_MLO_5G"},
                         Row{"WLAN5G\n\nWLAN2G", "WLAN_MLO_5G"}, Row{"WLAN5G\nRadios:\nWLAN2G", "WLAN_MLO_5G"},
                         Row{"WLAN5G\nBridged addresses:\nWLAN2G", "WLAN_MLO_5G"}, Row{"", "WLAN_MLO_24G_5G"}}) {
    const std::string dump = header("AA:AA:AA:AA:AA:00", "None") + header("AA:AA:AA:AA:AA:01", "None") +
                             "Remote connections (Directly connected to self)\n"
                             "Interface name   Medium Type  MAC Address  MID\n" +
                             row.rows + "\n";
    EXPECT_EQ(parse(dump, 1).devices[1].connectionType, row.type) << row.rows;
  }
}

TEST(ConnectionTypeCode, HasARowForEachText) {
  const std::vector<const char*> texts{"ETHER",           "WLAN_MLO_24G",   "WLAN_MLO_5G",        "WLAN_MLO_6G",
                                       "WLAN_MLO_24G_5G", "WLAN_MLO_5G_6G", "WLAN_MLO_24G_5G_6G", "WLAN_MLO_24G_6G"};
  for (std::size_t code = 0; code < texts.size(); ++code)
    EXPECT_EQ(connection_type_code(texts[code]), static_cast<int>(code));
  for (const char* text : {"Wireless", "Wired", "", "ether"}) EXPECT_EQ(connection_type_code(text), 5) << text;
}

TEST(ParseArpTable, TakesTheSecondFieldWithoutBrackets) {
  const std::string table =
      "? (192.168.0.7) at aa:bb:cc:dd:ee:0f [ether] on br-lan\nname (192.168.0.8) at AA:BB:CC:00:00:01\n";
  EXPECT_EQ(parse_arp_table(table, "AA:BB:CC:DD:EE:0F"), "192.168.0.7");
  EXPECT_EQ(parse_arp_table(table, "aa:bb:cc:00:00:01"), "192.168.0.8");
  EXPECT_EQ(parse_arp_table(table, "aa:bb:cc:00:00:02"), std::nullopt);
  EXPECT_EQ(parse_arp_table(table, "$(x)"), std::nullopt);
}

}  // namespace

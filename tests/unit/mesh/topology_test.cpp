// Whole dumps to trees.
#include "mesh/topology.h"

#include <gtest/gtest.h>

#include "mesh/dumps.h"

namespace {

using namespace dumps;

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

// Headers.

TEST(ParseTopology, TakesBothFormsOfAHeader) {
  for (const char* line : {"QCA IEEE 1905.1 device: AA:BB:CC:DD:EE:01, IPv4 address: 10.0.0.7",
                           "IEEE 1905.1 device: AA:BB:CC:DD:EE:01, IPv4 address: 10.0.0.7 , MAP Agent"}) {
    const TopologyInfo info = parse(std::string(line) + "\n");
    ASSERT_EQ(info.devices.size(), 1U) << line;
    EXPECT_EQ(info.devices[0].mac, "AA:BB:CC:DD:EE:01");
    EXPECT_EQ(info.devices[0].ip, "10.0.0.7");
  }
  EXPECT_TRUE(parse("IEEE 1905.1 device: AA:BB:CC:DD:EE:01, IPv4 address: 10.0.0.7\n").devices.empty());
}

TEST(ParseTopology, KnowsADeviceThatIsPrintedTwiceOnce) {
  EXPECT_EQ(parse(header(kRoot, "None") + header(kRoot, "None")).devices.size(), 1U);
}

TEST(ParseTopology, CutsALineAt1023Bytes) {
  const std::string line = "QCA IEEE 1905.1 device: AA:BB:CC:DD:EE:01, ";
  const std::string address = "IPv4 address: 10.0.0.7";
  const auto devices = [&](std::size_t blanks) { return parse(line + std::string(blanks, ' ') + address).devices; };
  EXPECT_EQ(devices(1023 - line.size() - address.size())[0].ip, "10.0.0.7");
  EXPECT_EQ(devices(1024 - line.size() - address.size())[0].ip, "10.0.0.");
}

TEST(ParseTopology, CutsAnAddressOfTheArpTableAt15Bytes) {
  const TopologyInfo info = parse_topology(
      "IEEE 1905.1 device: AA:BB:CC:DD:EE:01, MAP Agent\n",
      {.ip_of_mac = [](const std::string&) { return "192.168.100.2000"; }, .mesh_mode = [] { return 0; }});
  EXPECT_EQ(info.devices[0].ip, "192.168.100.200");
}

// The tree.

TEST(ParseTopology, HangsADeviceWithoutUpstreamBelowTheController) {
  EXPECT_EQ(parse(header(kRoot, "None") + header(kAgent, "None")).devices[1].parent, 0U);
}

TEST(ParseTopology, DoesNotLinkADeviceToAnUnknownParent) {
  EXPECT_EQ(parse(header(kRoot, "None") + header(kAgent, kOtherAgent)).devices[1].parent, std::nullopt);
}

TEST(ParseTopology, WithoutAControllersMarkHasTheRootAndItsLegacyStationsAlone) {
  const TopologyInfo info =
      parse(header(kRoot, "????") + "Legacy Devices:\nInterface eth0:\n0C:00:00:00:00:01\nRadios:\n" +
            header(kAgent, kRoot) + bridged("0C:00:00:00:00:02 1 Remote"));
  EXPECT_EQ(stations_of(*info.root_device()), "00:01 ETHER 1; ");
  EXPECT_TRUE(info.root_device()->children.empty());
  EXPECT_EQ(stations_of(info.devices[1]), "");
}

TEST(ParseTopology, SaysThatARootWithoutStationsAndChildrenHasNoAgent) {
  EXPECT_FALSE(parse(header(kRoot, "None")).hasAgent);
  EXPECT_TRUE(parse(header(kRoot, "None") + header(kAgent, kRoot)).hasAgent);
}

// Legacy devices.

TEST(ParseTopology, ReadsLegacyDevicesOfTheRootUpToItsRadios) {
  const TopologyInfo info = parse(
      header(kRoot, "None") + "Legacy Devices:\nInterface eth1:\n0C:00:00:00:00:01\nInterface eth2:\n" +
      " \t0C:00:00:00:00:02 and more\n0C:00:00:00:00:0\nno colon in this line\nInterface ath1:\n0C:00:00:00:00:03\n" +
      "Radios:\n0C:00:00:00:00:04\n");
  EXPECT_EQ(stations_of(*info.root_device()), "00:02 ETHER 1; 00:03 Wireless 1; ");
}

TEST(ParseTopology, ReadsNoLegacyDevicesOfAnAgent) {
  const TopologyInfo info = parse(header(kRoot, "None") + header(kAgent, kRoot) +
                                  "Legacy Devices:\nInterface eth0:\n0C:00:00:00:00:01\nRadios:\n");
  EXPECT_EQ(stations_of(info.devices[0]) + stations_of(info.devices[1]), "");
}

// Bridged addresses.

TEST(ParseTopology, ReadsBridgedStationsUpToTheRadios) {
  const TopologyInfo info =
      parse(header(kRoot, "None") + header(kAgent, kRoot) + interfaces("1 WLAN2G AA:AA:AA:AA:AA:11") +
            "Bridged addresses:\nAddress Interface Type\n0C:00:00:00:00:01 1 Remote\n0C:00:00:00:00:02 1 Local\n" +
            "0C:00:00:00:00:03 x Remote\nRemote\n0C:00:00:00:00:01 1 Remote\n" + kRoot + " 1 Remote\nRadios:\n" +
            "0C:00:00:00:00:04 1 Remote\n");
  // Neither a local one, nor one without an index, nor a second time, nor a device, nor what follows the radios.
  EXPECT_EQ(stations_of(info.devices[1]), "00:01 WLAN_MLO_24G 2; ");
}

TEST(ParseTopology, ReadsNoBridgedStationsOfTheRoot) {
  const TopologyInfo info =
      parse(header(kRoot, "None") + header(kRoot, "None") + bridged("0C:00:00:00:00:01 1 Remote"));
  EXPECT_EQ(stations_of(*info.root_device()), "");
}

TEST(ParseTopology, HasRoomFor15BytesOfAStationsType) {
  const std::string station = "0C:00:00:00:00:01";
  const TopologyInfo info =
      parse(agent_with("1 WLAN2G x:1\n2 WLAN5G x:2\n3 WLAN6G x:3",
                       station + " 1 Remote\n" + station + " 2 Remote\n" + station + " 3 Remote"));
  EXPECT_EQ(stations_of(info.devices[1]), "00:01 WLAN_MLO_24G_5G 2; ");
}

TEST(ParseTopology, AcceptsAWiredStationOneBelowTheRadioOf24GHzOnly) {
  struct Row {
    const char* port;
    const char* radio;
    bool accepted;
  };
  for (const Row& row :
       {Row{"AA:AA:AA:AA:AA:0F", "AA:AA:AA:AA:AA:10", true}, Row{"AA:AA:AA:AA:AA:FF", "AA:AA:AA:AA:AA:00", true},
        Row{"BB:AA:AA:AA:AA:0F", "AA:AA:AA:AA:AA:10", true},   // the first octet does not count
        Row{"AA:AA:AA:AA:AA:0f", "AA:AA:AA:AA:AA:10", false},  // written in upper case
        Row{"AA:AA:AA:AA:AA:10", "AA:AA:AA:AA:AA:10", false}, Row{"AA:AA:AA:AA:AA:11", "AA:AA:AA:AA:AA:10", false},
        Row{"AA:AA:AA:AA:AB:0F", "AA:AA:AA:AA:AA:10", false}, Row{"1F", "20", true}, Row{"1F", "none", false}}) {
    const std::string dump =
        agent_with(std::string("0 ETHER ") + row.port + "\n1 WLAN2G " + row.radio, "0C:00:00:00:00:01 0 Remote");
    EXPECT_EQ(stations_of(parse(dump).devices[1]), row.accepted ? "00:01 ETHER 2; " : "")
        << row.port << " " << row.radio;
  }
  EXPECT_EQ(stations_of(parse(agent_with("0 ETHER AA:AA:AA:AA:AA:0F", "0C:00:00:00:00:01 0 Remote")).devices[1]), "");
}

TEST(ParseTopology, TakesTheRadioOf24GHzThatCounts) {
  const auto wired = [](const std::string& rows) {
    return !stations_of(parse(agent_with(rows, "0C:00:00:00:00:01 0 Remote")).devices[1]).empty();
  };
  EXPECT_TRUE(wired("0 ETHER x:0F\n1 WLAN2G x:10\n4 WLAN2G x:20"));
  EXPECT_FALSE(wired("0 ETHER x:1F\n1 WLAN2G x:10\n4 WLAN2G x:20"));
  EXPECT_TRUE(wired("0 ETHER x:1F\n1 WLAN5G x:01\n1 WLAN2G x:10\n4 WLAN2G x:20")) << "index 1 is taken";
}

// Duplicates.

TEST(ParseTopology, PrefersAnAgentsStationToTheSameOneOfTheController) {
  const std::string station = "0C:00:00:00:00:01";
  const TopologyInfo info =
      parse(header(kRoot, "None") + "Legacy Devices:\nInterface eth0:\n" + station + "\nRadios:\n" +
            header(kAgent, kRoot) + interfaces("1 WLAN2G x:1") + bridged(station + " 1 Remote"));
  EXPECT_EQ(stations_of(info.devices[0]), "");
  EXPECT_EQ(stations_of(info.devices[1]), "00:01 WLAN_MLO_24G 2; ");
}

TEST(ParseTopology, KeepsAStationBehindTheFirstOfTwoEquallyDeepAgents) {
  const std::string tables = interfaces("1 WLAN2G x:1") + bridged("0C:00:00:00:00:01 1 Remote");
  const TopologyInfo info =
      parse(header(kRoot, "None") + header(kAgent, kRoot) + tables + header(kOtherAgent, kRoot) + tables);
  EXPECT_EQ(stations_of(info.devices[1]), "00:01 WLAN_MLO_24G 2; ");
  EXPECT_EQ(stations_of(info.devices[2]), "");
}

TEST(ParseTopology, TellsAWirelessBackhaulOfThreeBands) {
  EXPECT_EQ(parse(fixture("wireless_backhaul")).devices[1].connectionType, "WLAN_MLO_24G_5G_6G");
}

}  // namespace

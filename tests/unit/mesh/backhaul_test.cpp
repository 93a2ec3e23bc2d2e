// Connection types, as the tables of a dump tell them.
#include "mesh/backhaul.h"

#include <vector>

#include <gtest/gtest.h>

#include "mesh/dumps.h"

namespace {

using namespace dumps;

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

std::string type_of_station(const std::string& interface_rows, const std::string& bridged_rows) {
  const std::string dump = agent_with(interface_rows, bridged_rows);
  const DumpIndex index{DumpLines(dump)};
  return BackhaulReader(index, [] { return 0; }).get_backhaul_type_via_bridge(kAgent, "0C:00:00:00:00:01");
}

TEST(BackhaulViaBridge, HasARowForEachCombinationOfMedia) {
  struct Row {
    std::vector<int> indices;
    const char* type;
  };
  for (const Row& row : {Row{{0}, "ETHER"}, Row{{1, 2, 3}, "WLAN_MLO_24G_5G_6G"}, Row{{1, 2}, "WLAN_MLO_24G_5G"},
                         Row{{2, 3}, "WLAN_MLO_5G_6G"}, Row{{1}, "WLAN_MLO_24G"}, Row{{2}, "WLAN_MLO_5G"},
                         Row{{3}, "WLAN_MLO_6G"}, Row{{1, 3}, "WLAN_MLO_5G"}, Row{{9}, "WLAN_MLO_5G"},
                         Row{{0, 1}, "WLAN_MLO_24G"}, Row{{0, 1, 3}, "WLAN_MLO_5G"}}) {
    std::string rows;
    for (const int index : row.indices) rows += "0C:00:00:00:00:01 " + std::to_string(index) + " Remote\n";
    EXPECT_EQ(type_of_station("0 ETHER x:0\n1 WLAN2G x:1\n2 WLAN5G x:2\n3 WLAN6G x:3", rows), row.type) << rows;
  }
}

TEST(BackhaulViaBridge, CountsEightInterfacesAtMost) {
  std::string rows;
  for (int row = 0; row < 8; ++row) rows += "0C:00:00:00:00:01 1 Remote\n";
  EXPECT_EQ(type_of_station("1 WLAN2G x:1\n2 WLAN5G x:2", rows + "0C:00:00:00:00:01 2 Remote"), "WLAN_MLO_24G");
}

TEST(BackhaulViaBridge, OfATargetThatIsNotBridgedIsItsOwnRemoteTables) {
  const std::string dump = header(kRoot, "None") + header(kAgent, kRoot) + bridged("") + header(kOtherAgent, kAgent) +
                           remote("WLAN6G") + "\n";
  EXPECT_EQ(parse(dump).devices[2].connectionType, "WLAN_MLO_6G");
}

TEST(BackhaulViaBridge, TellsTheFirstInterfaceThatItMatched) {
  const std::string dump =
      agent_with("1 WLAN2G x:1\n2 WLAN5G x:2",
                 "0C:00:00:00:00:01 7 Remote\n0C:00:00:00:00:01 2 Remote\n0C:00:00:00:00:01 1 Remote");
  const DumpIndex index{DumpLines(dump)};
  std::string interface_mac;
  BackhaulReader(index, [] { return 0; }).get_backhaul_type_via_bridge(kAgent, "0C:00:00:00:00:01", &interface_mac);
  EXPECT_EQ(interface_mac, "x:2");
}

TEST(BackhaulViaBridge, EndsAtAnEmptyLineAndAtTheNextHeading) {
  const std::string interface_rows = "1 WLAN2G x:1\n2 WLAN5G x:2";
  for (const char* end : {"", "Address of another table"}) {
    EXPECT_EQ(type_of_station(interface_rows,
                              "0C:00:00:00:00:01 1 Remote\n" + std::string(end) + "\n0C:00:00:00:00:01 2 Remote"),
              "WLAN_MLO_24G")
        << end;
  }
}

TEST(BackhaulFromRemote, StopsAtTheConnectionsThatAreNotDirect) {
  const std::string stop = "Remote connections (Not directly connected to self)\n";
  const std::string table = remote("WLAN6G");
  const std::string rows_after = header(kRoot, "None") + header(kAgent, kRoot) + remote("WLAN5G\n" + stop + "WLAN6G");
  EXPECT_EQ(parse(rows_after, 1).devices[1].connectionType, "WLAN_MLO_5G");
  const std::string table_after = header(kRoot, "None") + header(kAgent, kRoot) +
                                  "Remote connections (Directly connected to self)\n" + stop +
                                  table.substr(table.find("Interface name"));
  EXPECT_EQ(parse(table_after, 1).devices[1].connectionType, "WLAN_MLO_24G_5G") << "the mesh mode's";
}

// Interfaces of an agent: what counts as a row, and where the table ends.

TEST(AgentInterfaces, HaveKnownMediaAndAnIndexOfTheirOwn) {
  const std::string row = "0C:00:00:00:00:01 1 Remote";
  EXPECT_EQ(type_of_station("  1 (ath0) (up)  WLAN6G   x:1  more (text)", row), "WLAN_MLO_6G");
  EXPECT_EQ(type_of_station("1 WLAN60 x:1\n1 WLAN6G x:1", row), "WLAN_MLO_6G") << "an unknown medium is no row";
  EXPECT_EQ(type_of_station("1 WLAN6G\n1 WLAN2G x:1", row), "WLAN_MLO_24G") << "a row needs a MAC";
  EXPECT_EQ(type_of_station("1 WLAN2G x:1\n1 WLAN6G x:2", row), "WLAN_MLO_24G") << "the first of an index counts";
  EXPECT_EQ(type_of_station("x 1 WLAN6G x:1", row), "WLAN_MLO_5G") << "a row begins with a digit";
}

TEST(AgentInterfaces, EndAtTheCountOfBridgedAddresses) {
  const std::string row = "0C:00:00:00:00:01 1 Remote";
  EXPECT_EQ(
      type_of_station("1 (ath0) WLAN6G x:1\n3 Bridged addresses:\n2 WLAN2G x:2", row + "\n0C:00:00:00:00:01 2 Remote"),
      "WLAN_MLO_6G")
      << "what follows the count is no interface";
  EXPECT_EQ(type_of_station("Bridged addresses:\n1 WLAN6G x:1", row), "WLAN_MLO_6G") << "without a count nothing ends";
}

TEST(AgentInterfaces, AreNoneOfTheControllers) {
  const std::string dump = header(kRoot, "None") + interfaces("1 WLAN2G x:1") + bridged("0C:00:00:00:00:01 1 Remote");
  const DumpIndex index{DumpLines(dump)};
  EXPECT_FALSE(index.interface_table(kRoot));
}

}  // namespace

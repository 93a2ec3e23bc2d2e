// Merging of client rows.
#include "mesh/client_table.h"

#include <array>

#include <gtest/gtest.h>

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

}  // namespace

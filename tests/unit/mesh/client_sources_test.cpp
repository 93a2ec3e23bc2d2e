// Parsers of the sources of the client list.
#include "mesh/client_sources.h"

#include <array>
#include <cstdio>

#include <gtest/gtest.h>

namespace {

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

TEST(ParseWifiClients, StopsAt127RowsWithoutTouchingTheLast) {
  std::string text;
  for (int number = 0; number < 200; ++number) {
    std::array<char, 18> mac{};
    std::snprintf(mac.data(), mac.size(), "AA:BB:CC:DD:EE:%02X", static_cast<unsigned int>(number));
    text += std::string("mac_rssi:") + mac.data() + " 1\noperating_band:" + (number < 127 ? "2.4GHz" : "6GHz") + "\n";
  }
  const ClientTable table = parse_wifi_clients(text);
  ASSERT_EQ(table.rows().size(), 127U);
  EXPECT_EQ(table.rows()[126].connectionType, 1);
}

TEST(ParseWifiClients, IsSafeOnAnyText) {
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

TEST(GetPortByMac, KnowsAMacInAnyNotationByItsDigits) {
  const char* table = "port no\tmac addr\n  1\taa:bb:cc:dd:ee:02\tno\n  2\tAABBCCDDEE02\n  3\tx\n4\n";
  EXPECT_EQ(get_port_by_mac(table, "AABBCCDDEE02"), 1);
  EXPECT_EQ(get_port_by_mac(table, ""), 3);
  EXPECT_EQ(get_port_by_mac("  1\taa:bb:cc:dd:ee:02\tno\n", "aa:bb:cc:dd:ee:02"), std::nullopt) << "a heading";
}

TEST(GetNetworkSubnet, ReplacesTheLastPart) {
  EXPECT_EQ(get_network_subnet("192.168.7.9"), "192.168.7.0/24");
  EXPECT_EQ(get_network_subnet("nonsense"), "192.168.0.0/24");
}

TEST(ParseWifiClients, BoundsEveryText) {
  const ClientTable table = parse_wifi_clients(
      "mac_rssi:AA:BB:CC:DD:EE:01:02:03 -123456789\r\noperating_band:5GHz\r\nmlo:Yes it "
      "is\nmld_addr:11:22:33:44:55:66:77:88\n");
  ASSERT_EQ(table.rows().size(), 1U);
  EXPECT_EQ(table.rows()[0].mac, "11:22:33:44:55:66");
  EXPECT_EQ(table.rows()[0].rssi, "-123456");
  EXPECT_EQ(table.rows()[0].connectionType, 2);
}

TEST(GetPortByMac, TakesTheFirstRowBehindTheHeading) {
  EXPECT_EQ(get_port_by_mac("1 aa:bb:cc:dd:ee:01\n2 aa:bb:cc:dd:ee:01\n3 aa:bb:cc:dd:ee:01\n", "AA:BB:CC:DD:EE:01"), 2);
  for (const char* text :
       {"", "heading", "heading\nx aa:bb:cc:dd:ee:01\n", "heading\n99999999999 aa:bb:cc:dd:ee:01\n"}) {
    EXPECT_EQ(get_port_by_mac(text, "AA:BB:CC:DD:EE:01"), std::nullopt) << text;
  }
}

}  // namespace

// Addresses out of the ARP table.
#include <gtest/gtest.h>

#include "mesh/topology.h"

namespace {

TEST(ParseArpTable, TakesTheSecondFieldWithoutBrackets) {
  const std::string table =
      "? (192.168.0.7) at aa:bb:cc:dd:ee:0f [ether] on br-lan\nname (192.168.0.8) at AA:BB:CC:00:00:01\n";
  EXPECT_EQ(parse_arp_table(table, "AA:BB:CC:DD:EE:0F"), "192.168.0.7");
  EXPECT_EQ(parse_arp_table(table, "aa:bb:cc:00:00:01"), "192.168.0.8");
  EXPECT_EQ(parse_arp_table(table, "aa:bb:cc:00:00:02"), std::nullopt);
  EXPECT_EQ(parse_arp_table(table, "$(x)"), std::nullopt);
}

TEST(ParseArpTable, TakesTheFirstLineAndAtMost15Bytes) {
  EXPECT_EQ(parse_arp_table("a (10.0.0.1) at x\nb (10.0.0.2) at X\n", "x"), "10.0.0.1");
  EXPECT_EQ(parse_arp_table("? (192.168.100.2000) at x", "x"), "192.168.100.200");
}

TEST(ParseArpTable, IsSafeOnAnyText) {
  for (const char* table : {"", "\n", "x", "x\n", "  x  \n", "x ()\n", "\nx\t(\n"})
    EXPECT_EQ(parse_arp_table(table, "x"), std::nullopt) << table;
  EXPECT_EQ(parse_arp_table("a b c\n", ""), std::nullopt);
}

}  // namespace

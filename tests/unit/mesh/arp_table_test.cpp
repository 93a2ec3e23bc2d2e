// Addresses out of the ARP table.
#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "mesh/topology.h"
#include "platform/file.h"

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

TEST(ArpLookupIp, AsksTheTool) {
  std::string ip = "before";
  EXPECT_EQ(arp_lookup_ip("aa:bb:cc:dd:ee:0f", ip), 1) << "there is no such tool here";
  std::filesystem::create_directories("/tmp/bin");
  ASSERT_TRUE(
      platform::write_file("/tmp/bin/arp", "#!/bin/sh\necho \"? (192.168.0.7) at AA:BB:CC:DD:EE:0F $*\"\n", 0755));
  const std::string path = std::getenv("PATH");
  setenv("PATH", ("/tmp/bin:" + path).c_str(), 1);
  EXPECT_EQ(arp_lookup_ip("00:00:00:00:00:01", ip), 1);
  EXPECT_EQ(ip, "before");
  EXPECT_EQ(arp_lookup_ip("aa:bb:cc:dd:ee:0f", ip), 0);
  EXPECT_EQ(ip, "192.168.0.7");
  EXPECT_EQ(arp_lookup_ip("-a", ip), 0) << "all entries are asked for";
  setenv("PATH", path.c_str(), 1);
}

}  // namespace

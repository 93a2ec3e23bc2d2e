// Addresses out of the ARP table.
#include "mesh/arp_table.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

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

// What ArpTable says without an index: the first line that holds the text, whatever surrounds it.
std::string first_line_with(const std::string& table, const std::string& text) {
  const std::size_t position = table.find(text);
  if (position == std::string::npos) return "none";
  const std::size_t begin = table.rfind('\n', position) + 1;
  return table.substr(begin, table.find(' ', begin) - begin);
}

TEST(ArpTable, FindsWhatASearchOfItsTextFinds) {
  std::mt19937 random(7);
  const auto text_of = [&random](std::size_t length) {
    std::string text;
    while (text.size() < length) text += "ab:::::cd"[random() % 9];
    return text;
  };
  for (int round = 0; round < 200; ++round) {
    std::string table;
    for (int line = 0; line < 20; ++line) {
      const std::string number = std::to_string(line);
      table += number + " " + number + " " + text_of(random() % 60) + (line % 3 == 0 ? ":aa:bb:cc:dd:aa:b" : "") + "\n";
    }
    const ArpTable arp(table);
    for (const std::string& mac : {text_of(17), text_of(3), table.substr(random() % table.size(), 17),
                                   std::string("ab:bb:cc:dd:aa:bb"), std::string("aa:bb:cc:dd:aa:bb")}) {
      if (mac.find('\n') != std::string::npos) continue;
      EXPECT_EQ(arp.ip_of(mac).value_or("none"), first_line_with(table, mac)) << mac << " in\n" << table;
    }
  }
}

TEST(ArpTable, KeepsTheAddressAsItIsWritten) {
  EXPECT_EQ(ArpTable("? (FE80::Ab) at AA:bb:CC:DD:EE:0F").ip_of("aa:BB:cc:dd:ee:0f"), "FE80::Ab");
}

// A search of the table for each would be some 10^11 steps.
TEST(ArpTable, AnswersManyQuestionsAboutALongTable) {
  std::string table;
  std::array<char, 18> mac{};
  const auto mac_of = [&mac](int number) {
    std::snprintf(mac.data(), mac.size(), "02:00:%02x:%02x:%02x:01", number >> 16, number >> 8 & 255, number & 255);
    return mac.data();
  };
  for (int row = 0; row < 10000; ++row) {
    (table += "? (10.0.") += std::to_string(row >> 8) + "." + std::to_string(row & 255) + ") at " + mac_of(row) + "\n";
  }
  const ArpTable arp(table);
  int known = 0;
  for (int device = 0; device < 160000; ++device) known += arp.ip_of(mac_of(device)).has_value() ? 1 : 0;
  EXPECT_EQ(known, 10000);
  EXPECT_EQ(arp.ip_of("02:00:00:27:0F:01"), "10.0.39.15");
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

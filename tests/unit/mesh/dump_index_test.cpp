// The index over the lines of a topology dump.
#include "mesh/dump_index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::ElementsAre;

constexpr const char* kOwn = "02:00:00:00:00:01";
constexpr const char* kAgent = "02:00:00:00:00:02";

// An agent whose table has two rows of one index and a 2.4 GHz radio.
std::string dump() {
  return std::string("- QCA IEEE 1905.1 device: ") + kAgent + ", IPv4 address: 10.0.0.2, MAP Agent\n" +  // 0
         "  Upstream Device: 02:00:00:00:00:01\n" +                                                      // 1
         "  Index   Medium Type   MAC Address\n" +                                                       // 2
         "  0 (eth0)   ETHER   02:00:00:00:00:10\n" +                                                    // 3
         "  1 (ath0)   WLAN2G   02:00:00:00:00:11\n" +                                                   // 4
         "  1 (ath1)   WLAN5G   02:00:00:00:00:12\n" +                                                   // 5
         "  2 (x)   OTHER   02:00:00:00:00:13\n" +                                                       // 6
         "  2 Bridged addresses:\n" +                                                                    // 7
         "  Address              Index    Interface Type\n" +                                            // 8
         "  Remote connections (Directly connected to self)\n" +                                         // 9
         "  Interface name   Medium Type  MAC Address        MID\n" +                                    // 10
         "  Remote connections (Not directly connected to self)\n";                                      // 11
}

TEST(DumpIndex, KnowsTheTablesOfADevice) {
  const std::string text = dump();
  const DumpIndex index{DumpLines(text)};
  ASSERT_EQ(index.lines().size(), 12U);
  EXPECT_EQ(index.header_of(kAgent), 0U);
  EXPECT_EQ(index.header_of(kOwn), std::nullopt);
  EXPECT_EQ(index.header_of(""), std::nullopt);
  EXPECT_EQ(index.remote_table(0), 10U);
  EXPECT_EQ(index.bridge_table(0), 8U);
  EXPECT_EQ(index.remote_table(9), std::nullopt) << "behind its heading there is none";
  const auto table = index.interface_table(kAgent);
  ASSERT_TRUE(table);
  EXPECT_EQ(table->begin, 2U);
  EXPECT_EQ(table->end, 7U);
  EXPECT_FALSE(index.interface_table(kOwn));
}

TEST(DumpIndex, CountsTheFirstRowOfAnIndex) {
  const std::string text = dump();
  const DumpIndex index{DumpLines(text)};
  const DumpIndex::Range table = index.interface_table(kAgent).value();
  const InterfaceRow* row = index.interface_row(table, 1);
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->medium, "WLAN2G");
  EXPECT_EQ(row->mac, "02:00:00:00:00:11");
  EXPECT_EQ(index.radio_24ghz(table), row);
  EXPECT_EQ(index.interface_row(table, 2), nullptr) << "an unknown medium";
  EXPECT_EQ(index.interface_row(table, 7), nullptr);
  EXPECT_EQ(index.interface_row({table.begin, 4}, 1), nullptr) << "it stands behind the table's end";
}

TEST(DumpIndex, HasNoTableOfADeviceWithoutAnUpstream) {
  std::string text = dump();
  text.replace(text.find("Upstream Device: 02:00:00:00:00:01"), 34, "Upstream Device: None");
  const DumpIndex index{DumpLines(text)};
  EXPECT_EQ(index.header_of(kAgent), 0U);
  EXPECT_FALSE(index.interface_table(kAgent));
}

TEST(DumpIndex, StopsAtTheConnectionsOfOthers) {
  const std::string text = std::string("QCA IEEE 1905.1 device: ") + kAgent + ",\n" +
                           "Remote connections (Directly connected to self)\n" +
                           "Remote connections (Not directly connected to self)\n" +
                           "Interface name   Medium Type  MAC Address        MID\n";
  EXPECT_EQ(DumpIndex(DumpLines(text)).remote_table(0), std::nullopt);
}

TEST(DumpIndex, CutsLongLines) {
  const std::string text = std::string(kDumpLineMax + 100, 'x') + "\nshort";
  const DumpIndex index{DumpLines(text)};
  ASSERT_EQ(index.lines().size(), 2U);
  EXPECT_EQ(index.lines()[0].size(), kDumpLineMax);
  EXPECT_EQ(index.lines()[1], "short");
  EXPECT_TRUE(DumpIndex(DumpLines("")).lines().empty());
}

TEST(LineNumbers, FindsTheFirstBehindALine) {
  LineNumbers numbers;
  for (const std::size_t line : {2U, 5U, 9U}) numbers.add(line);
  EXPECT_THAT(numbers.all(), ElementsAre(2U, 5U, 9U));
  EXPECT_EQ(numbers.after(0), 2U);
  EXPECT_EQ(numbers.after(2), 5U);
  EXPECT_EQ(numbers.after(9), std::nullopt);
}

TEST(TextBehind, EndsAtTheFirstOfItsEnds) {
  EXPECT_EQ(text_behind("a: b c", "a: ", " "), "b");
  EXPECT_EQ(text_behind("a: b", "a: ", " "), "b");
  EXPECT_EQ(text_behind("a: ", "a: ", " "), "");
  EXPECT_EQ(text_behind("x", "a: ", " "), std::nullopt);
}

TEST(HeaderMac, EndsAtTheComma) {
  EXPECT_EQ(header_mac("- QCA IEEE 1905.1 device: 02:00:00:00:00:02, IPv4"), kAgent);
  for (const char* line : {"", "device: ", "device: 02:00:00:00:00:02", "device: much-too-long-for-a-mac, x"}) {
    EXPECT_EQ(header_mac(line), "") << line;
  }
}

TEST(IsDeviceHeader, TakesTheDaemonsOwnDeviceAndAgents) {
  EXPECT_TRUE(is_device_header("QCA IEEE 1905.1 device: x, IPv4 address: y"));
  EXPECT_TRUE(is_device_header("IEEE 1905.1 device: x, MAP Agent"));
  EXPECT_FALSE(is_device_header("QCA IEEE 1905.1 device: x"));
  EXPECT_FALSE(is_device_header("MAP Agent"));
}

}  // namespace

// The DHCP settings' own encodings.
#include "lan/dhcp_settings.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "lan/dhcp_leases.h"

namespace {

TEST(LeaseText, IsInDaysOrHours) {
  struct Row {
    int hours;
    const char* text;
  };
  for (const Row& row : {Row{0, "0h"}, Row{5, "5h"}, Row{23, "23h"}, Row{24, "1d"}, Row{36, "1d"}, Row{48, "2d"},
                         Row{-5, "-5h"}, Row{-30, "-30h"}}) {
    EXPECT_EQ(lease_text(row.hours), row.text);
  }
}

TEST(LeaseHours, ReadsDaysAndHoursAlone) {
  EXPECT_EQ(lease_hours("5h"), 5);
  EXPECT_EQ(lease_hours("2d"), 48);
  for (const char* text : {"", "5", "5m", "infinite", "h", "99999999999999999999"})
    EXPECT_EQ(lease_hours(text), 0) << text;
}

TEST(GetLastDigitOfIP, ReadsThreeCharactersBehindTheLastDot) {
  std::string head;
  EXPECT_EQ(GetLastDigitOfIP("192.168.1.100", &head), 100);
  EXPECT_EQ(head, "192.168.1");
  EXPECT_EQ(GetLastDigitOfIP("1.2.3.45678", &head), 456);
  EXPECT_EQ(GetLastDigitOfIP("100", &head), 0);
  EXPECT_EQ(GetLastDigitOfIP("1.2.3.", &head), 0);
  EXPECT_EQ(GetLastDigitOfIP("", nullptr), -1);
}

TEST(AddColonOfMac, PutsAColonBehindEverySecondCharacter) {
  struct Row {
    std::string mac;
    const char* spaced;
  };
  for (Row row : {Row{"0011AABBCCDD", "00:11:AA:BB:CC:DD"}, Row{"00:11:AA:BB:CC:DD", "00:11:AA:BB:CC:DD"}, Row{"", ""},
                  Row{"a", "a"}, Row{"ab", "ab"}, Row{"abc", "ab:c"}, Row{"日本語", "日本:語"}, Row{"é1", "é1"}}) {
    AddColonOfMac(row.mac);
    EXPECT_EQ(row.mac, row.spaced);
  }
}

struct Row {
  std::string ip;
  std::string mac;
  int remain_time;
  bool operator==(const Row&) const = default;
};

// The leases at second 100.
std::vector<Row> leases_of(const std::string& lines) {
  std::vector<Row> rows;
  for_each_lease(lines, 100, [&rows](const Lease& lease) {
    rows.push_back({std::string(lease.ip), std::string(lease.mac), lease.remain_time});
  });
  return rows;
}

TEST(ForEachLease, KeepsLinesOfThreeFieldsThatEndLater) {
  EXPECT_EQ(
      leases_of("150,AA,1.1.1.1\n100,BB,2.2.2.2\n0,CC,3.3.3.3\n200,DD\n300,EE,5.5.5.5,x\nx,FF,6.6.6.6\n"
                "101,GG,7.7.7.7\r\n,102,,HH,8.8.8.8,\n103,II,9.9.9.9"),
      (std::vector<Row>{{"1.1.1.1", "AA", 50}, {"7.7.7.7", "GG", 1}, {"8.8.8.8", "HH", 2}, {"9.9.9.9", "II", 3}}));
  EXPECT_EQ(leases_of(""), std::vector<Row>());
  EXPECT_EQ(leases_of("\n\n"), std::vector<Row>());
}

TEST(ForEachLease, BoundsTheRemainingTime) {
  EXPECT_EQ(leases_of("9223372036854775807,AA,1.1.1.1\n4294967395,BB,2.2.2.2\n"),
            (std::vector<Row>{{"1.1.1.1", "AA", 2147483647}, {"2.2.2.2", "BB", 2147483647}}));
}

TEST(ForEachLease, BoundsItsTextsAtACharactersEnd) {
  const std::string text(100, 'A');
  EXPECT_EQ(leases_of("150," + text + "," + text + "\n"),
            (std::vector<Row>{{std::string(31, 'A'), std::string(31, 'A'), 50}}));
  const std::string thirty = "日日日日日日日日日日";
  EXPECT_EQ(leases_of("150," + thirty + "日,x" + thirty + "日\n"), (std::vector<Row>{{"x" + thirty, thirty, 50}}));
}

// As fgets hands a line of 255 bytes and more to its reader: in pieces.
TEST(ForEachLease, TakesALongLineOfTheLeasesInPieces) {
  const std::string long_mac(246, 'm');
  EXPECT_EQ(leases_of("150," + long_mac + ",1.1.1\n"), (std::vector<Row>{{"1.1.", std::string(31, 'm'), 50}}));
  EXPECT_EQ(leases_of("150," + long_mac + ",1.1.1.1 150,AA,2.2.2.2\n").size(), 1U);
}

}  // namespace

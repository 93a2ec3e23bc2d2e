// The DHCP settings' own encodings.
#include "lan/dhcp_settings.h"

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
                  Row{"a", "a"}, Row{"ab", "ab"}, Row{"abc", "ab:c"}}) {
    AddColonOfMac(row.mac);
    EXPECT_EQ(row.mac, row.spaced);
  }
}

TEST(ParseLeases, KeepsLinesOfThreeFieldsThatEndLater) {
  const std::vector<Lease> leases = parse_leases(
      "150,AA,1.1.1.1\n100,BB,2.2.2.2\n0,CC,3.3.3.3\n200,DD\n300,EE,5.5.5.5,x\nx,FF,6.6.6.6\n101,GG,7.7.7.7\r\n", 100);
  ASSERT_EQ(leases.size(), 2U);
  EXPECT_EQ(leases[0].remain_time, 50);
  EXPECT_EQ(leases[0].mac, "AA");
  EXPECT_EQ(leases[1].ip, "7.7.7.7");
}

TEST(ParseLeases, BoundsTheRemainingTime) {
  const std::vector<Lease> leases = parse_leases("9223372036854775807,AA,1.1.1.1\n4294967395,BB,2.2.2.2\n", 100);
  ASSERT_EQ(leases.size(), 2U);
  EXPECT_EQ(leases[0].remain_time, 2147483647);
  EXPECT_EQ(leases[1].remain_time, 2147483647);
}

TEST(ParseLeases, BoundsItsTexts) {
  const std::string text(100, 'A');
  const std::vector<Lease> leases = parse_leases("150," + text + "," + text + "\n", 100);
  ASSERT_EQ(leases.size(), 1U);
  EXPECT_EQ(leases[0].mac, std::string(31, 'A'));
  EXPECT_EQ(leases[0].ip, std::string(31, 'A'));
}

}  // namespace

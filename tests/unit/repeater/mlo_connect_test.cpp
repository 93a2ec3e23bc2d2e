#include "repeater/mlo_connect.h"

#include <cstdio>

#include <gtest/gtest.h>

namespace {

TEST(DeriveMldMac, AddsTwoToTheSecondDigitWithADecimalCarry) {
  const std::pair<const char*, const char*> rows[] = {
      {"08:90:FE:12:34:50", "10:90:FE:12:34:50"}, {"0E:90:FE:12:34:50", "00:90:FE:12:34:50"},
      {"0F:90:FE:12:34:50", "01:90:FE:12:34:50"}, {"F8:90:FE:12:34:50", ""},
      {"F7:90:FE:12:34:50", "F9:90:FE:12:34:50"}, {"FE:90:FE:12:34:50", "F0:90:FE:12:34:50"},
      {"00:90:fe:12:34:50", "02:90:fe:12:34:50"}, {"9D:90:FE:12:34:50", "A5:90:FE:12:34:50"},
      {"0d:00:00:00:00:00", "15:00:00:00:00:00"}};
  for (const auto& [bridge, mld] : rows) EXPECT_EQ(derive_mld_mac(bridge), mld) << bridge;
}

TEST(DeriveMldMac, FollowsTheSameRuleForEveryFirstOctet) {
  for (unsigned int octet = 0; octet < 256; ++octet) {
    char text[3];
    std::snprintf(text, sizeof text, "%02X", octet);
    const unsigned int sum = (octet % 16 + 2) % 16;
    const bool carries = sum > 9;
    char expected[3];
    std::snprintf(expected, sizeof expected, "%X%X", (octet / 16 + (carries ? 1 : 0)) % 16, carries ? sum - 10 : sum);
    const bool ends = carries && octet / 16 == 15;
    EXPECT_EQ(derive_mld_mac(std::string(text) + ":00"), ends ? "" : std::string(expected) + ":00") << text;
  }
}

TEST(DeriveMldMac, LeavesWhatIsNoAddress) {
  for (const char* text : {"", "0", "zz:00", "0z:00", "z0:00"}) EXPECT_EQ(derive_mld_mac(text), text);
}

}  // namespace

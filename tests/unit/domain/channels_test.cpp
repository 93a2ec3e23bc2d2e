// Permitted channels and width codes.
#include "domain/channels.h"

#include <set>

#include <gtest/gtest.h>

namespace {

bool is_expected(int band, int channel) {
  if (channel == -1 || channel == 0) return true;
  if (band == 0) return channel >= 1 && channel <= 13;
  if (band == 1) return channel % 4 == 0 && ((channel >= 36 && channel <= 64) || (channel >= 100 && channel <= 144));
  return channel % 4 == 1 && channel >= 1 && channel <= 93;
}

TEST(IsPermitted, EveryChannelOfEveryBand) {
  for (int band = 0; band < 3; ++band) {
    for (int channel = -300; channel <= 300; ++channel) {
      EXPECT_EQ(channels::is_permitted(band, channel), is_expected(band, channel)) << band << " " << channel;
    }
    for (const int channel : {2147483647, -2147483647 - 1, 65572}) EXPECT_FALSE(channels::is_permitted(band, channel));
  }
}

TEST(IsPermitted, RefusesBandsThatThereAreNot) {
  for (const int band : {-1, 3, 4, 1000000, -2147483647 - 1}) EXPECT_FALSE(channels::is_permitted(band, 0)) << band;
}

TEST(IsPermitted, TablesHoldNothingTwice) {
  EXPECT_EQ(std::set<int>(channels::k2g.begin(), channels::k2g.end()).size(), 15U);
  EXPECT_EQ(std::set<int>(channels::k5g.begin(), channels::k5g.end()).size(), 22U);
  EXPECT_EQ(std::set<int>(channels::k6g.begin(), channels::k6g.end()).size(), 26U);
}

TEST(WidthCode, OfHtmodes) {
  const std::pair<const char*, int> rows[] = {{"HT20", 0},   {"EHT20", 0},  {"HT40", 1},  {"EHT40", 1},
                                              {"EHT40+", 1}, {"EHT40-", 1}, {"HT80", 4},  {"EHT80", 4},
                                              {"EHT160", 5}, {"VHT160", 5}, {"EHT320", 6}};
  for (const auto& [htmode, code] : rows) EXPECT_EQ(channels::width_code_of_htmode(htmode), code) << htmode;
  for (const char* other : {"", "HT", "VHT80", "HE80", "HT40+", "EHT320-1", "eht20", "EHT20 "}) {
    EXPECT_EQ(channels::width_code_of_htmode(other), std::nullopt) << other;
  }
}

TEST(WidthCode, OfMegahertz) {
  const std::pair<int, int> rows[] = {{20, 0}, {40, 1}, {80, 4}, {160, 5}, {320, 6}};
  for (const auto& [mhz, code] : rows) EXPECT_EQ(channels::width_code_of_mhz(mhz), code) << mhz;
  for (const int other : {-20, 0, 5, 10, 21, 60, 240, 640}) {
    EXPECT_EQ(channels::width_code_of_mhz(other), std::nullopt) << other;
  }
}

}  // namespace

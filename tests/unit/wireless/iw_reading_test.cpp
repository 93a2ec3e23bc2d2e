// Parsers of `iw` output, on whole outputs and on what may become of them.
#include "wireless/iw_reading.h"

#include <string>

#include <gtest/gtest.h>

#include "platform/file.h"

namespace {

std::string fixture(const std::string& name) {
  const auto text = platform::read_file((std::string(UNIT_FIXTURES "/") + name + ".txt").c_str());
  EXPECT_TRUE(text) << name;
  return text.value_or("");
}

TEST(IwFixtures, ChannelTextAndWidth) {
  const struct {
    const char* name;
    const char* channel;
    int number, width;
  } rows[] = {{"platform-5.19-radio-2g-no-ht", "1", 1, 20},  {"platform-5.19-radio-5g", "36", 36, 160},
              {"platform-5.19-radio-6g", "37", 37, 320},     {"platform-5.19-ap-80p80", "100", 100, 80},
              {"platform-5.19-mld-three-links", "6", 6, 40}, {"platform-5.19-mld-link-down", "37", 37, 320},
              {"upstream-6.9-mld-three-links", "6", 6, 40}};
  for (const auto& row : rows) {
    const std::string info = fixture(row.name);
    EXPECT_EQ(iw::parse_channel_text(info), row.channel) << row.name;
    const auto operating = iw::parse_operating(info);
    ASSERT_TRUE(operating) << row.name;
    EXPECT_EQ(operating->channel, row.number) << row.name;
    EXPECT_EQ(operating->width_mhz, row.width) << row.name;
  }
}

TEST(IwFixtures, ARadioThatIsDownHasNoChannel) {
  const std::string info = fixture("platform-5.19-radio-down");
  EXPECT_EQ(iw::parse_channel_text(info), std::nullopt);
  EXPECT_FALSE(iw::parse_operating(info));
}

TEST(IwFixtures, LinkAddresses) {
  const std::string platform = fixture("platform-5.19-mld-three-links");
  EXPECT_EQ(iw::parse_link_address(platform, 0, 31), "02:90:fe:12:34:b0");
  EXPECT_EQ(iw::parse_link_address(platform, 1, 31), "02:90:fe:12:34:b1");
  EXPECT_EQ(iw::parse_link_address(platform, 2, 31), "02:90:fe:12:34:b2");
  EXPECT_EQ(iw::parse_link_address(platform, 3, 31), std::nullopt);
  const std::string upstream = fixture("upstream-6.9-mld-three-links");
  EXPECT_EQ(iw::parse_link_address(upstream, 0, 31), "02:90:fe:12:34:b0");
  EXPECT_EQ(iw::parse_link_address(upstream, 1, 31), "02:90:fe:12:34:b1");
  EXPECT_EQ(iw::parse_link_address(upstream, 2, 31), std::nullopt);  // 12 is not 2
  EXPECT_EQ(iw::parse_link_address(upstream, 12, 31), "02:90:fe:12:34:bc");
}

TEST(IwFixtures, ALinkThatIsDownKeepsItsAddress) {
  const std::string info = fixture("platform-5.19-mld-link-down");
  EXPECT_EQ(iw::parse_link_address(info, 0, 31), "02:90:fe:12:34:b0");
  EXPECT_EQ(iw::parse_link_address(info, 1, 31), std::nullopt);
}

TEST(IwFixtures, AnAccessPointHasNoLinks) {
  EXPECT_EQ(iw::parse_link_address(fixture("platform-5.19-ap-80p80"), 0, 31), std::nullopt);
}

// Every cut of a real output is read without harm, and never as an address that is not in it.
TEST(IwFixtures, CutsAreHarmless) {
  for (const char* name : {"platform-5.19-mld-three-links", "upstream-6.9-mld-three-links"}) {
    const std::string info = fixture(name);
    for (std::size_t length = 0; length <= info.size(); ++length) {
      const std::string cut = info.substr(0, length);
      if (const auto address = iw::parse_link_address(cut, 1, 31)) {
        EXPECT_NE(std::string("02:90:fe:12:34:b1").find(*address), std::string::npos) << cut;
      }
      const auto operating = iw::parse_operating(cut);
      EXPECT_TRUE(!operating || operating->channel == 6) << cut;
    }
  }
}

TEST(ParseChannelText, TakesWhatStandsBetweenTheWords) {
  EXPECT_EQ(iw::parse_channel_text("\tchannel 1234 (x)"), "1234");
  EXPECT_EQ(iw::parse_channel_text("\tchannel  (x)"), "");
  EXPECT_EQ(iw::parse_channel_text("channel 36\nchannel 40 ("), "40");
  EXPECT_EQ(iw::parse_channel_text("channel36 (5180 MHz)\r\n"), std::nullopt);
  EXPECT_EQ(iw::parse_channel_text(""), std::nullopt);
  EXPECT_EQ(iw::parse_channel_text(std::string(100000, 'x') + "channel 1 ("), "1");
}

TEST(ParseOperating, FailsOnTheFirstLineThatIsNotOfTheForm) {
  EXPECT_FALSE(iw::parse_operating("channel width:\nchannel 36 (5180 MHz), width: 80 MHz"));
  EXPECT_FALSE(iw::parse_operating("channel 36 (5180 MHz), width: MHz"));
  EXPECT_FALSE(iw::parse_operating("channel x (5180 MHz), width: 80 MHz"));
  EXPECT_TRUE(iw::parse_operating("channel 36\nchannel 36 (5180 MHz), width: 80 MHz"));
}

TEST(ParseLinkAddress, IsBounded) {
  EXPECT_EQ(iw::parse_link_address("link 0:\naddr " + std::string(100, 'a'), 0, 31), std::string(31, 'a'));
  EXPECT_EQ(iw::parse_link_address("link 0:\naddr\naddr", 0, 31), std::nullopt);
  EXPECT_EQ(iw::parse_link_address("addr 02:00:00:00:00:01\nlink 0:\n", 0, 31), std::nullopt);
  EXPECT_EQ(iw::parse_link_address("link 0:\n\tx addr\t 02:00:00:00:00:01", 0, 31), "02:00:00:00:00:01");
}

}  // namespace

// Channels and widths from UCI and from `iw`; the sandbox of this test has no `iw`.
#include "wireless/channel/channel_readers.h"

#include <string>

#include <gtest/gtest.h>

#include "domain/mesh_codes.h"
#include "wireless/router_state.h"

namespace {

void radios(const std::string& disabled, const std::string& channel, const std::string& htmode) {
  std::string text;
  for (const char* radio : {"wifi0", "wifi1", "wifi2"}) {
    text += std::string("config wifi-device '") + radio + "'\n\toption disabled '" + disabled + "'\n";
    if (!channel.empty()) text += "\toption channel '" + channel + "'\n";
    text += "\toption htmode '" + htmode + "'\n";
  }
  router_state::config("wireless", text);
}

TEST(GetChannelInfo, OfAUnitThatSetsItsChannelsItself) {
  router_state::mesh(kMeshRoleController, 1, 0);
  const struct {
    const char *disabled, *channel;
    int expected;
  } rows[] = {{"0", "auto", 0}, {"0", "0", 0}, {"0", "36", 36}, {"1", "36", -1}, {"1", "auto", -1}, {"2", "144", 144}};
  for (const auto& row : rows) {
    radios(row.disabled, row.channel, "EHT80");
    for (int band = 0; band < 3; ++band) {
      int channel = -7;
      EXPECT_EQ(get_channel_info(band, channel), 0);
      EXPECT_EQ(channel, row.expected) << row.disabled << row.channel;
    }
  }
}

TEST(GetChannelInfo, Fails) {
  int channel = -7;
  radios("0", "36", "EHT80");
  router_state::mesh(0, 1, 0);
  for (const int band : {-1, 3, 1000000}) EXPECT_NE(get_channel_info(band, channel), 0);
  router_state::no_config("button_mesh");
  EXPECT_NE(get_channel_info(0, channel), 0);
  router_state::mesh(0, 1, 0);
  radios("0", "", "EHT80");
  EXPECT_NE(get_channel_info(0, channel), 0);
  router_state::no_config("wireless");
  EXPECT_NE(get_channel_info(0, channel), 0);
  EXPECT_EQ(channel, -7);
}

TEST(GetChannelInfo, OfAnAgent) {
  radios("0", "36", "EHT80");
  int channel = -7;
  for (const int onboarded : {0, 1}) {  // without `iw` the operating channel is unknown, too
    router_state::mesh(kMeshRoleAgent, 1, onboarded);
    EXPECT_EQ(get_channel_info(1, channel), 0);
    EXPECT_EQ(channel, 0);
  }
  radios("1", "36", "EHT80");
  EXPECT_EQ(get_channel_info(1, channel), 0);
  EXPECT_EQ(channel, -1);
}

TEST(IwReaders, FailWithoutIwOrWithoutAName) {
  std::string text = "kept?";
  int channel = -7;
  int width = -7;
  EXPECT_NE(get_channel_by_iw_cmd("wifi0", text), 0);
  EXPECT_EQ(text, "");
  EXPECT_NE(get_channel_by_iw_cmd(nullptr, text), 0);
  EXPECT_NE(get_channel_width_by_iw_cmd("wifi0", channel, width), 0);
  EXPECT_NE(get_channel_width_by_iw_cmd("", channel, width), 0);
  EXPECT_NE(get_channel_width_by_iw_cmd(nullptr, channel, width), 0);
  for (const int band : {-1, 0, 3}) EXPECT_NE(get_flash_channel_width_info(band, channel, width), 0);
  EXPECT_EQ(channel, -7);
  EXPECT_EQ(width, -7);
}

TEST(GetBandInfo, ByHtmode) {
  router_state::mesh(0, 1, 0);
  radios("0", "0", "EHT40-");
  int code = -7;
  EXPECT_EQ(get_band_info(0, code), 0);
  EXPECT_EQ(code, 1);
  radios("0", "0", "HE80");
  EXPECT_NE(get_band_info(0, code), 0);
  for (const int band : {-1, 3}) EXPECT_NE(get_band_info(band, code), 0);
  EXPECT_EQ(code, 1);
}

TEST(GetFlashchannelInfo, TheLastLineWins) {
  const struct {
    const char* output;
    int channel, width_code;
  } rows[] = {{"36 160\n", 36, 5}, {"6 40", 6, 1},   {"1 20\n36 80\n37 320\n", 37, 6},
              {"", -7, -7},        {"\n\n", -7, -7}, {"36 17\n", 36, -7},
              {"36\n", 36, -7},    {"x 80\n", 0, 4}};
  for (const auto& row : rows) {
    int channel = -7;
    int width_code = -7;
    EXPECT_EQ(get_flashchannel_info(row.output, channel, width_code), 0);
    EXPECT_EQ(channel, row.channel) << row.output;
    EXPECT_EQ(width_code, row.width_code) << row.output;
  }
  int channel = 0;
  int width_code = 0;
  EXPECT_EQ(get_flashchannel_info(std::string(10000, '7') + " 80\n", channel, width_code), 0);  // read in pieces
}

TEST(GetRepeaterConnectBand, EveryCombination) {
  const auto expected = [](const std::string& mlo, const std::string& band) {
    if (mlo == "1") return 4;
    if (mlo == "2") return 5;
    if (mlo == "3") return 6;
    if (mlo != "0") return 0;
    if (band.starts_with("2.4GHz")) return 1;
    if (band.starts_with("5GHz")) return 2;
    return band.starts_with("6GHz") ? 3 : 0;
  };
  for (const char* mlo : {"0", "1", "2", "3", "4", "x", "00"})
    for (const char* band : {"2.4GHz", "5GHz", "6GHz", "5GHz,6GHz", "0", "GHz", "2.4"}) {
      router_state::config("repeater", std::string("config repeater 'repeater_band'\n\toption mlo '") + mlo +
                                           "'\n\toption repeater_select_band '" + band + "'\n");
      int out = -7;
      EXPECT_EQ(get_repeater_connect_band(out), 0);
      EXPECT_EQ(out, expected(mlo, band)) << mlo << " " << band;
    }
  int out = -7;
  router_state::config("repeater", "config repeater 'repeater_band'\n\toption mlo '0'\n");
  EXPECT_NE(get_repeater_connect_band(out), 0);
  router_state::config("repeater", "config repeater 'repeater_band'\n\toption repeater_select_band '5GHz'\n");
  EXPECT_NE(get_repeater_connect_band(out), 0);
  router_state::no_config("repeater");
}

}  // namespace

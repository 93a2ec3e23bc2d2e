// What the channels of a request write: to the radios, and to a mesh controller's copy.
#include "wireless/channel/channel_write.h"

#include <string>

#include <gtest/gtest.h>

#include "domain/mesh_codes.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::section;
using package_text::stored;

void write_radios() {
  std::string text;
  for (const Radio& radio : kRadios) {
    text += section("wifi-device", radio.section, {{"disabled", "old"}, {"channel", "old"}});
  }
  router_state::config("wireless", text);
  router_state::config("wireless_for_easymesh", text);
}

std::string radio_of(const char* package, std::size_t band) {
  const char* radio = kRadios[band].section;
  return stored(package, radio, "disabled") + " " + stored(package, radio, "channel");
}

TEST(ArePermitted, EachBandHasItsOwn) {
  EXPECT_TRUE(are_permitted({13, 144, 93}));
  EXPECT_TRUE(are_permitted({-1, 0, -1}));
  EXPECT_FALSE(are_permitted({14, 36, 1}));
  EXPECT_FALSE(are_permitted({1, 68, 1}));
  EXPECT_FALSE(are_permitted({1, 36, 2}));
}

TEST(SetChannelValue, WritesTheRadiosAndACopyForTheMesh) {
  for (const int role : {kMeshRoleNone, kMeshRoleController, kMeshRoleAgent}) {
    write_radios();
    router_state::mesh(role, 1, 0);
    EXPECT_EQ(set_channel_Value(6, -1, 0), 0);
    EXPECT_EQ(radio_of("wireless", 0), "0 6");
    EXPECT_EQ(radio_of("wireless", 1), "1 old");
    EXPECT_EQ(radio_of("wireless", 2), "0 0");
    const bool is_mirrored = role == kMeshRoleController;
    EXPECT_EQ(radio_of("wireless_for_easymesh", 0), is_mirrored ? "0 6" : "old old");
    EXPECT_EQ(radio_of("wireless_for_easymesh", 1), "old old");
    EXPECT_EQ(radio_of("wireless_for_easymesh", 2), is_mirrored ? "0 0" : "old old");
  }
}

TEST(SetChannelValue, WritesAllOrNone) {
  write_radios();
  router_state::mesh(kMeshRoleNone, 1, 0);
  EXPECT_EQ(set_channel_Value(6, 36, 2), 1);
  router_state::no_config("button_mesh");
  EXPECT_EQ(set_channel_Value(6, 36, 1), 1);
  for (std::size_t band = 0; band < kRadios.size(); ++band) EXPECT_EQ(radio_of("wireless", band), "old old");
}

TEST(CheckChannelValue, TakesWhatItsBandPermits) {
  for (const int channel : {-1, 0, 1, 13}) EXPECT_EQ(check_channel_value(0, channel), 0) << channel;
  for (const int channel : {-2, 14, 36}) EXPECT_EQ(check_channel_value(0, channel), 1) << channel;
  for (const int band : {-1, 3, 1000000}) EXPECT_EQ(check_channel_value(band, 0), 1) << band;
}

}  // namespace

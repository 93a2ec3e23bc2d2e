// The channels that the settings page shows.
#include "wireless/setting/setting_read.h"

#include <string>

#include <gtest/gtest.h>

#include "domain/mesh_codes.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::section;

void write_radios(const char* second_channel) {
  router_state::config("wireless",
                       section("wifi-device", "wifi0", {{"disabled", "0"}, {"channel", "6"}}) +
                           section("wifi-device", "wifi1", {{"disabled", "0"}, {"channel", second_channel}}) +
                           section("wifi-device", "wifi2", {{"disabled", "1"}, {"channel", "37"}}));
  router_state::mesh(kMeshRoleNone, 1, 0);
}

TEST(GetChannelValue, OfAUnitThatSetsThemItself) {
  write_radios("auto");
  json::ObjectText root;
  EXPECT_EQ(get_channel_value(root, unit::OperatingMode("router"), 0), 0);
  EXPECT_EQ(root.text(), R"({ "set2GChannel": 6, "set5GChannel": 0, "set6GChannel": -1 })");
}

TEST(GetChannelValue, FailsWhereARadioCannotBeRead) {
  write_radios("");
  json::ObjectText root;
  EXPECT_EQ(get_channel_value(root, unit::OperatingMode("router"), 0), 1);
  EXPECT_EQ(root.text(), R"({ "set2GChannel": 6 })");
}

}  // namespace

// WPS as the settings of an SSID switch it.
#include "wireless/wps/wps_change.h"

#include <string>

#include <gtest/gtest.h>

#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::section;
using package_text::stored;

constexpr const char* kNames[] = {"ath0", "ath1", "ath2", "ath01"};

void write_router(const char* mac_filter) {
  std::string text;
  for (const char* name : kNames) text += section("wifi-iface", name, {{"wps_state", "old"}, {"wps_pbc", "old"}});
  router_state::config("wireless", text);
  router_state::config("macfilter", section("macfilter", "macfilter", {{"enable", mac_filter}}));
  router_state::mesh(0, 1, 0);
}

std::string wps_of(const char* name) {
  return stored("wireless", name, "wps_state") + " " + stored("wireless", name, "wps_pbc");
}

TEST(ChangeWpsStatus, SwitchesTheTwoMainSsidsAlone) {
  for (const int state : {0, 1, 2}) {
    write_router("0");
    for (const char* name : kNames) change_wpsStatus(state, name);
    EXPECT_EQ(wps_of("ath0"), state == 0 ? "1 0" : "2 1");
    EXPECT_EQ(wps_of("ath1"), state == 0 ? "1 0" : "2 1");
    EXPECT_EQ(wps_of("ath2"), "old old");
    EXPECT_EQ(wps_of("ath01"), "old old");
  }
}

TEST(ChangeWpsStatus, LeavesItAloneWhenToldToOrBesideAMacFilter) {
  write_router("0");
  change_wpsStatus(kLeaveWpsAlone, "ath0");
  EXPECT_EQ(wps_of("ath0"), "old old");
  write_router("1");
  change_wpsStatus(1, "ath0");
  EXPECT_EQ(wps_of("ath0"), "old old");
  write_router("0");
  router_state::no_config("button_mesh");
  change_wpsStatus(1, "ath0");
  EXPECT_EQ(wps_of("ath0"), "old old");
}

}  // namespace

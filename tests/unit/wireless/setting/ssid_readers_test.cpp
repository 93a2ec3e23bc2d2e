// Readers of one access point.
#include "wireless/setting/ssid_readers.h"

#include <string>

#include <gtest/gtest.h>

#include "wireless/router_state.h"

namespace {

TEST(GetMldLinkMac, RefusesWhatItCannotAsk) {
  std::string out = "kept";
  EXPECT_NE(get_mld_link_mac(nullptr, 0, out, 32), 0);
  EXPECT_NE(get_mld_link_mac("mld0", 0, out, 17), 0);
  EXPECT_NE(get_mld_link_mac("mld0", 0, out, 32), 0);  // no `iw` here
  EXPECT_EQ(out, "kept");
}

TEST(GetCopySsidEnable, AMissingOptionCountsAsOn) {
  router_state::config("wireless",
                       "config wifi-iface 'ath04'\n\toption disabled '1'\nconfig wifi-iface 'ath14'\n\toption disabled "
                       "'0'\nconfig wifi-iface 'ath24'\n");
  int out = -7;
  EXPECT_EQ(get_copySsid_enable("ath04", out), 0);
  EXPECT_EQ(out, 0);
  EXPECT_EQ(get_copySsid_enable("ath14", out), 0);
  EXPECT_EQ(out, 1);
  out = 0;
  EXPECT_EQ(get_copySsid_enable("ath24", out), 0);
  EXPECT_EQ(out, 1);
  EXPECT_NE(get_copySsid_enable(nullptr, out), 0);
}

}  // namespace

// Every combination of what makes WPS on.
#include "wireless/wps/wps_status.h"

#include <string>

#include <gtest/gtest.h>

#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::section;

std::string wireless(const char* const (&values)[6]) {
  return section("wifi-iface", "ath0", {{"wps_pbc", values[0]}, {"disabled", values[2]}}) +
         section("wifi-iface", "ath1", {{"wps_pbc", values[1]}, {"disabled", values[3]}}) +
         section("wifi-device", "wifi0", {{"disabled", values[4]}}) +
         section("wifi-device", "wifi1", {{"disabled", values[5]}});
}

TEST(GetWpsStatus, EveryCombination) {
  for (int bits = 0; bits < 64; ++bits) {
    const auto bit = [bits](int index) { return (bits >> index & 1) != 0; };
    const char* values[6];
    for (int i = 0; i < 6; ++i) values[i] = bit(i) ? "1" : "0";
    router_state::config("wireless", wireless(values));
    const bool on0 = bit(0) && !bit(2) && !bit(4);
    const bool on1 = bit(1) && !bit(3) && !bit(5);
    int out = -1;
    EXPECT_EQ(getWpsStatus(out), 0);
    EXPECT_EQ(out, on0 || on1 ? 1 : 0) << bits;
  }
}

TEST(GetWpsStatus, AnyOtherPushButtonValueIsOn) {
  for (const char* pbc : {"2", "-1", "15"}) {
    const char* values[6] = {pbc, "0", "0", "0", "0", "0"};
    router_state::config("wireless", wireless(values));
    int out = 0;
    EXPECT_EQ(getWpsStatus(out), 0);
    EXPECT_EQ(out, 1) << pbc;
  }
}

// The six options one after the other: none may be missing.
TEST(GetWpsStatus, EachUnreadableOptionFails) {
  const char* values[6] = {"1", "1", "0", "0", "0", "0"};
  const std::string whole = wireless(values);
  for (std::size_t begin = whole.find("\toption"); begin != std::string::npos;
       begin = whole.find("\toption", begin + 1)) {
    std::string text = whole;
    router_state::config("wireless", text.erase(begin, whole.find('\n', begin) + 1 - begin));
    int out = -7;
    EXPECT_NE(getWpsStatus(out), 0) << text;
    EXPECT_EQ(out, -7);
  }
  router_state::no_config("wireless");
  int out = -7;
  EXPECT_NE(getWpsStatus(out), 0);
  EXPECT_EQ(out, -7);
}

}  // namespace

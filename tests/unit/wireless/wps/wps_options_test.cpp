// What each way of switching WPS writes, and where.
#include "wireless/wps/wps_options.h"

#include <string>

#include <gtest/gtest.h>

#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::section;
using package_text::stored;

void write_packages(const char* options_of) {
  const std::string text = section("wifi-iface", options_of, {{"wps_state", "old"}, {"wps_pbc", "old"}});
  router_state::config("wireless", text);
  router_state::config("wireless_for_easymesh", text);
}

std::string wps_of(const char* package) {
  return stored(package, "ath1", "wps_state") + " " + stored(package, "ath1", "wps_pbc");
}

TEST(WpsWrite, EachChangeHasItsTexts) {
  const struct {
    wps::Change change;
    const char* expected;
  } rows[] = {{wps::Change::kOn, "2 1"}, {wps::Change::kOff, "1 0"}, {wps::Change::kOffBesideFilter, "0 0"}};
  for (const auto& row : rows)
    for (const bool is_mirrored : {false, true}) {
      write_packages("ath1");
      EXPECT_EQ(wps::write("ath1", row.change, is_mirrored), std::nullopt);
      EXPECT_EQ(wps_of("wireless"), row.expected);
      EXPECT_EQ(wps_of("wireless_for_easymesh"), is_mirrored ? row.expected : "old old");
    }
}

TEST(WpsWrite, TellsWhatCouldNotBeWritten) {
  write_packages("ath0");
  EXPECT_EQ(wps::write("ath1", wps::Change::kOn), "wireless.ath1.wps_state");
  write_packages("ath1");
  router_state::no_config("wireless_for_easymesh");
  EXPECT_EQ(wps::write("ath1", wps::Change::kOn, true), "wireless_for_easymesh.ath1.wps_state");
  EXPECT_EQ(wps_of("wireless"), "2 old");
}

}  // namespace

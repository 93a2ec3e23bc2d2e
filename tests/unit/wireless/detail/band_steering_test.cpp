// Band steering: what the 5 and 6 GHz main SSIDs take over, and what they get back.
#include "wireless/detail/band_steering.h"

#include <string>

#include <gtest/gtest.h>

#include "wireless/detail/detail_tables.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::section;
using package_text::stored;

void write_wireless() {
  router_state::config(
      "wireless",
      section(
          "wifi-iface", "ath0",
          {{"ssid", "Two"}, {"hidden", "1"}, {"wpa_group_rekey", "900"}, {"key", "key two"}, {"encryption", "none"}}) +
          section("wifi-iface", "ath1",
                  {{"ssid", "Five"},
                   {"hidden", "0"},
                   {"wpa_group_rekey", "1800"},
                   {"key", "key five"},
                   {"encryption", "psk2+ccmp"},
                   {"mld", "mld2"}}) +
          section("wifi-iface", "ath2",
                  {{"ssid", "Six"},
                   {"hidden", "0"},
                   {"wpa_group_rekey", "3600"},
                   {"encryption", "ccmp"},
                   {"owe", "1"},
                   {"mld", "mld3"}}) +
          section("wifi-mld", "mld2", {{"mld_ssid", "Five"}}) + section("wifi-mld", "mld3", {{"mld_ssid", "Six"}}));
}

void write_steering(const char* enable) {
  router_state::config("lbd", section("config", "config", {{"Enable", enable}, {"EnableMulti11kRequest", enable}}));
}

void write_kept() {
  router_state::config("bandsteering", section("wifi-iface", "ath1", {{"owe", "stale"}, {"sae", "stale"}}) +
                                           section("wifi-iface", "ath2", {{"key", "stale"}}));
}

std::string lbd() { return stored("lbd", "config", "Enable") + stored("lbd", "config", "EnableMulti11kRequest"); }

void expect_steered() {
  for (const char* ifname : {"ath0", "ath1", "ath2"}) {
    EXPECT_EQ(stored("wireless", ifname, "ssid"), "Two");
    EXPECT_EQ(stored("wireless", ifname, "hidden"), "1");
    EXPECT_EQ(stored("wireless", ifname, "wpa_group_rekey"), "900");
    EXPECT_EQ(stored("wireless", ifname, "key"), "key two");
    for (const char* option : {"sae", "sae_confirm_immediate", "ieee80211w"}) {
      EXPECT_EQ(stored("wireless", ifname, option), "1") << ifname << '.' << option;
    }
  }
  EXPECT_EQ(stored("wireless", "ath0", "encryption"), "psk2+ccmp");
  EXPECT_EQ(stored("wireless", "ath1", "encryption"), "psk2+ccmp");
  EXPECT_EQ(stored("wireless", "ath2", "encryption"), "ccmp");
  EXPECT_EQ(stored("wireless", "ath2", "owe"), "-");
  EXPECT_EQ(stored("wireless", "mld2", "mld_ssid"), "Two");
  EXPECT_EQ(stored("wireless", "mld3", "mld_ssid"), "Two");
  EXPECT_EQ(lbd(), "11");
}

TEST(SetBandSteeringInfo, OnKeepsTheirOwnAndTakesTheModels) {
  write_wireless();
  write_steering("0");
  write_kept();
  EXPECT_EQ(set_band_steering_Info(1), 0);
  expect_steered();
  const char* const kept[2][7] = {{"Five", "0", "1800", "key five", "psk2+ccmp", "-", "-"},
                                  {"Six", "0", "3600", "-", "ccmp", "-", "1"}};
  for (const int i : {0, 1})
    for (std::size_t option = 0; option < wlan_detail::kSteeredOptions.size(); ++option) {
      EXPECT_EQ(stored("bandsteering", i == 0 ? "ath1" : "ath2", wlan_detail::kSteeredOptions[option]), kept[i][option])
          << i << wlan_detail::kSteeredOptions[option];
    }
}

// Their own settings were kept when it was switched on, and are not overwritten with the model's.
TEST(SetBandSteeringInfo, OnAgainKeepsNothing) {
  write_wireless();
  write_steering("1");
  write_kept();
  EXPECT_EQ(set_band_steering_Info(1), 0);
  expect_steered();
  EXPECT_EQ(stored("bandsteering", "ath1", "owe"), "stale");
  EXPECT_EQ(stored("bandsteering", "ath1", "ssid"), "-");
}

TEST(SetBandSteeringInfo, OffGivesBackWhatWasKept) {
  write_wireless();
  write_steering("0");
  write_kept();
  set_band_steering_Info(1);
  EXPECT_EQ(set_band_steering_Info(0), 0);
  EXPECT_EQ(lbd(), "00");
  EXPECT_EQ(stored("wireless", "ath1", "ssid"), "Five");
  EXPECT_EQ(stored("wireless", "mld2", "mld_ssid"), "Five");
  EXPECT_EQ(stored("wireless", "ath1", "key"), "key five");
  EXPECT_EQ(stored("wireless", "ath1", "wpa_group_rekey"), "1800");
  EXPECT_EQ(stored("wireless", "ath1", "sae"), "1");  // it had none to get back
  EXPECT_EQ(stored("wireless", "ath2", "ssid"), "Six");
  EXPECT_EQ(stored("wireless", "mld3", "mld_ssid"), "Six");
  EXPECT_EQ(stored("wireless", "ath2", "owe"), "1");
  EXPECT_EQ(stored("wireless", "ath0", "ssid"), "Two");
}

// A network that was made WPA3 between two switches does not come back as an open one.
TEST(SetBandSteeringInfo, ForgetsWhatAnEarlierSwitchKept) {
  write_wireless();
  write_steering("0");
  write_kept();
  set_band_steering_Info(1);
  set_band_steering_Info(0);
  UciDelOption(nullptr, "wireless", "ath2", "owe");
  set_band_steering_Info(1);
  set_band_steering_Info(0);
  EXPECT_EQ(stored("wireless", "ath2", "owe"), "-");
}

TEST(SetBandSteeringInfo, MakesThePlacesThatItNeeds) {
  write_wireless();
  router_state::config("lbd", "");
  router_state::config("bandsteering", "");
  EXPECT_EQ(set_band_steering_Info(1), 0);
  expect_steered();
  EXPECT_EQ(stored("bandsteering", "ath1", "ssid"), "Five");
  EXPECT_EQ(set_band_steering_Info(0), 0);
  EXPECT_EQ(stored("wireless", "ath1", "key"), "key five");
  EXPECT_EQ(stored("wireless", "ath2", "ssid"), "Six");
}

TEST(SetBandSteeringInfo, OverwritesNothingThatItCannotKeep) {
  for (const char* missing : {"lbd", "bandsteering"}) {
    write_wireless();
    write_steering("0");
    write_kept();
    router_state::no_config(missing);
    EXPECT_EQ(set_band_steering_Info(1), 1) << missing;
    EXPECT_EQ(stored("wireless", "ath1", "ssid"), "Five");
    EXPECT_EQ(stored("wireless", "ath2", "encryption"), "ccmp");
    EXPECT_EQ(stored("wireless", "ath0", "encryption"), "none");
    EXPECT_NE(lbd(), "11");
  }
}

TEST(SetBandSteeringInfo, AModelWithoutAnOptionLeavesTheirs) {
  write_wireless();
  write_steering("0");
  write_kept();
  UciDelOption(nullptr, "wireless", "ath0", "key");
  UciDelOption(nullptr, "wireless", "ath2", "mld");
  EXPECT_EQ(set_band_steering_Info(1), 0);
  EXPECT_EQ(stored("wireless", "ath1", "key"), "key five");
  EXPECT_EQ(stored("wireless", "mld2", "mld_ssid"), "Two");
  EXPECT_EQ(stored("wireless", "mld3", "mld_ssid"), "Six");
}

TEST(SetBandSteeringInfo, OtherValuesAreRefused) {
  for (const int value : {2, -1, 100}) {
    write_wireless();
    write_steering("0");
    EXPECT_EQ(set_band_steering_Info(value), 1);
    EXPECT_EQ(lbd(), "00");
    EXPECT_EQ(stored("wireless", "ath1", "ssid"), "Five");
  }
}

TEST(GetBandSteeringValue, IsOnOnlyWhenOne) {
  for (const char* value : {"0", "1", "2", "x"}) {
    router_state::config("lbd", std::string("config config 'config'\n\toption Enable '") + value + "'\n");
    int out = -7;
    EXPECT_EQ(get_bandSteering_Value(out), 0);
    EXPECT_EQ(out, std::string(value) == "1" ? 1 : 0);
  }
  router_state::no_config("lbd");
  int out = -7;
  EXPECT_NE(get_bandSteering_Value(out), 0);
  EXPECT_EQ(out, -7);
}

}  // namespace

// What the detail settings report, option by option.
#include "wireless/detail/detail_read.h"

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "domain/mesh_codes.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::Options;
using package_text::section;

// Options of package wireless by "section.option".
using Wireless = std::map<std::string, std::string>;

Wireless readable() {
  return {{"ath0.bintval", "200"},         {"ath0.dtim_period", "3"},     {"ath0.mcastenhance", "0"},
          {"ath01.guest_separation", "0"}, {"ath1.set_eht_mu_bfmr", "0"}, {"ath2.set_eht_mu_bfmr", "0"},
          {"ath0.set_eht_ulmumimo", "0"},  {"ath0.set_eht_ulofdma", "0"}, {"ath0.txpower", "27"},
          {"ath1.txpower", "24"},          {"ath2.txpower", "24"},        {"wifi1.dfs_puncture_en", "0"},
          {"wifi0.htmode", "HT20"},        {"wifi1.htmode", "EHT20"},     {"wifi2.htmode", "EHT20"},
          {"ath0.wps_pbc", "0"},           {"ath1.wps_pbc", "0"},         {"ath0.disabled", "0"},
          {"ath1.disabled", "0"},          {"wifi0.disabled", "0"},       {"wifi1.disabled", "0"}};
}

void write(const Wireless& wireless, int role = kMeshRoleNone) {
  std::map<std::string, Options> sections;
  for (const auto& [address, value] : wireless) {
    const std::size_t dot = address.find('.');
    sections[address.substr(0, dot)].emplace_back(address.substr(dot + 1), value);
  }
  std::string text;
  for (const auto& [name, options] : sections) text += section("wifi-iface", name, options);
  router_state::config("wireless", text);
  router_state::mesh(role, 1, 0);
  router_state::config("lbd", section("config", "config", {{"Enable", "0"}}));
}

void set_ieee80211r(const char* value) {
  router_state::config(
      "button_mesh",
      section("easymesh", "easymesh", {{"enable", "0"}, {"role", "none"}, {"mode", "1"}, {"ieee80211r", value}}));
}

using Field = int WlanDetailInfo::*;
constexpr Field kFields[] = {&WlanDetailInfo::beacon_interval,
                             &WlanDetailInfo::dtim_period,
                             &WlanDetailInfo::band_width_2g,
                             &WlanDetailInfo::band_width_5g,
                             &WlanDetailInfo::band_width_6g,
                             &WlanDetailInfo::power_2g,
                             &WlanDetailInfo::power_5g,
                             &WlanDetailInfo::power_6g,
                             &WlanDetailInfo::multicast_conversion_enable,
                             &WlanDetailInfo::guest_ssid_isolation_enable,
                             &WlanDetailInfo::beamforming_5g_enable,
                             &WlanDetailInfo::beamforming_6g_enable,
                             &WlanDetailInfo::ieee802dot11r,
                             &WlanDetailInfo::mu_mimo_enable,
                             &WlanDetailInfo::ofdma_enable,
                             &WlanDetailInfo::multi_ru_enable,
                             &WlanDetailInfo::wps_enable,
                             &WlanDetailInfo::band_steering_enable};

std::string shown(const WlanDetailInfo& info) {
  std::string text;
  for (const Field field : kFields) (text += std::to_string(info.*field)) += ' ';
  return text;
}

TEST(GetWlanDetailInfo, EverythingOff) {
  write(readable());
  WlanDetailInfo info;
  EXPECT_EQ(get_wlan_detail_info(info), 0);
  EXPECT_EQ(shown(info), "200 3 0 0 0 100 100 100 0 0 0 0 0 0 0 0 0 0 ");
}

// One option changes one field, and no other.
TEST(GetWlanDetailInfo, EachOptionHasItsField) {
  const struct {
    const char* address;
    const char* value;
    Field field;
    int expected;
  } rows[] = {
      {"ath0.bintval", "100", &WlanDetailInfo::beacon_interval, 100},
      {"ath0.dtim_period", "255", &WlanDetailInfo::dtim_period, 255},
      {"wifi0.htmode", "HT40", &WlanDetailInfo::band_width_2g, 1},
      {"wifi1.htmode", "EHT160", &WlanDetailInfo::band_width_5g, 3},
      {"wifi2.htmode", "EHT320", &WlanDetailInfo::band_width_6g, 4},
      {"ath0.txpower", "13", &WlanDetailInfo::power_2g, 50},
      {"ath1.txpower", "12", &WlanDetailInfo::power_5g, 50},
      {"ath2.txpower", "18", &WlanDetailInfo::power_6g, 75},
      {"ath0.txpower", "20", &WlanDetailInfo::power_2g, 0},
      {"ath1.txpower", "27", &WlanDetailInfo::power_5g, 0},
      {"ath2.txpower", "x", &WlanDetailInfo::power_6g, 0},
      {"ath0.mcastenhance", "5", &WlanDetailInfo::multicast_conversion_enable, 1},
      {"ath0.mcastenhance", "1", &WlanDetailInfo::multicast_conversion_enable, 0},
      {"ath01.guest_separation", "1", &WlanDetailInfo::guest_ssid_isolation_enable, 1},
      {"ath1.set_eht_mu_bfmr", "1", &WlanDetailInfo::beamforming_5g_enable, 1},
      {"ath2.set_eht_mu_bfmr", "1", &WlanDetailInfo::beamforming_6g_enable, 1},
      {"ath0.set_eht_ulmumimo", "1", &WlanDetailInfo::mu_mimo_enable, 1},
      {"ath0.set_eht_ulmumimo", "3", &WlanDetailInfo::mu_mimo_enable, 0},
      {"ath0.set_eht_ulofdma", "1", &WlanDetailInfo::ofdma_enable, 1},
      {"wifi1.dfs_puncture_en", "1", &WlanDetailInfo::multi_ru_enable, 1},
      {"ath1.wps_pbc", "1", &WlanDetailInfo::wps_enable, 1},
  };
  write(readable());
  WlanDetailInfo plain;
  ASSERT_EQ(get_wlan_detail_info(plain), 0);
  for (const auto& row : rows) {
    Wireless wireless = readable();
    wireless[row.address] = row.value;
    write(wireless);
    WlanDetailInfo info;
    EXPECT_EQ(get_wlan_detail_info(info), 0) << row.address;
    WlanDetailInfo expected = plain;
    expected.*row.field = row.expected;
    EXPECT_EQ(shown(info), shown(expected)) << row.address << ' ' << row.value;
  }
}

TEST(GetWlanDetailInfo, FastTransitionAndBandSteering) {
  for (const auto& [value, expected] :
       std::initializer_list<std::pair<const char*, int>>{{"1", 1}, {"0", 0}, {"2", 0}}) {
    write(readable());
    set_ieee80211r(value);
    router_state::config("lbd", section("config", "config", {{"Enable", value}}));
    WlanDetailInfo info;
    EXPECT_EQ(get_wlan_detail_info(info), 0);
    EXPECT_EQ(info.ieee802dot11r, expected);
    EXPECT_EQ(info.band_steering_enable, expected);
  }
}

// Each option in turn is taken away: some have a default, the others fail.
TEST(GetWlanDetailInfo, UnreadableOptions) {
  const std::map<std::string, std::pair<Field, int>> defaults{
      {"ath01.guest_separation", {&WlanDetailInfo::guest_ssid_isolation_enable, 0}},
      {"wifi1.dfs_puncture_en", {&WlanDetailInfo::multi_ru_enable, 0}},
      {"ath2.txpower", {&WlanDetailInfo::power_6g, 100}},
      {"ath0.wps_pbc", {&WlanDetailInfo::wps_enable, 1}},
      {"ath1.wps_pbc", {&WlanDetailInfo::wps_enable, 1}},
      {"ath0.disabled", {&WlanDetailInfo::wps_enable, 1}},
      {"ath1.disabled", {&WlanDetailInfo::wps_enable, 1}},
      {"wifi0.disabled", {&WlanDetailInfo::wps_enable, 1}},
      {"wifi1.disabled", {&WlanDetailInfo::wps_enable, 1}}};
  for (const auto& [address, value] : readable()) {
    Wireless wireless = readable();
    wireless.erase(address);
    write(wireless);
    WlanDetailInfo info;
    const auto found = defaults.find(address);
    EXPECT_EQ(get_wlan_detail_info(info), found == defaults.end() ? 1 : 0) << address;
    if (found != defaults.end()) {
      EXPECT_EQ(info.*found->second.first, found->second.second) << address;
    }
  }
}

TEST(GetWlanDetailInfo, UnreadablePackages) {
  write(readable());
  router_state::no_config("lbd");
  WlanDetailInfo info;
  EXPECT_EQ(get_wlan_detail_info(info), 1);
  write(readable());
  router_state::no_config("button_mesh");
  EXPECT_EQ(get_wlan_detail_info(info), 1);
}

TEST(GetWlanDetailInfo, UnknownWidthsFail) {
  for (const char* radio : {"wifi0", "wifi1", "wifi2"})
    for (const char* htmode : {"HE80", "", "HT20 ", "%s%n"}) {
      Wireless wireless = readable();
      wireless[std::string(radio) + ".htmode"] = htmode;
      write(wireless);
      WlanDetailInfo info;
      EXPECT_EQ(get_wlan_detail_info(info), 1) << radio << htmode;
    }
}

TEST(GetWlanDetailInfo, AnAgentHasFixedValuesWhateverUciHolds) {
  write({{"ath0.txpower", "6"},
         {"ath1.txpower", "6"},
         {"ath0.bintval", "999"},
         {"ath0.mcastenhance", "0"},
         {"wifi0.htmode", "HT40"},
         {"wifi1.htmode", "EHT80"},
         {"wifi2.htmode", "EHT160"},
         {"wifi1.dfs_puncture_en", "1"}},
        kMeshRoleAgent);
  WlanDetailInfo info;
  EXPECT_EQ(get_wlan_detail_info(info), 0);
  EXPECT_EQ(shown(info), "100 1 1 2 3 25 25 100 1 1 1 1 1 1 1 1 1 1 ");
}

}  // namespace

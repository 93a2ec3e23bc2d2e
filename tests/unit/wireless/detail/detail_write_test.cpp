// What each detail setting writes, and where: by role, operation mode and value.
#include "wireless/detail/detail_write.h"

#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "domain/mesh_codes.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::Options;
using package_text::section;
using package_text::stored;

const std::string kAccessPoints[] = {"ath0",  "ath1",  "ath2",  "ath01", "ath11", "ath21", "ath04", "ath14",
                                     "ath24", "ath05", "ath15", "ath25", "ath02", "ath12", "ath22"};

void write_router(int role, const char* op_mode) {
  std::string text;
  for (const char* radio : {"wifi0", "wifi1", "wifi2"}) text += section("wifi-device", radio, {{"disabled", "0"}});
  for (const std::string& ifname : kAccessPoints) {
    text += section("wifi-iface", ifname, {{"disabled", "0"}, {"encryption", "psk2"}, {"hidden", "0"}});
  }
  router_state::config("wireless", text);
  router_state::config("wireless_for_easymesh", text);
  router_state::config("lbd", section("config", "config", {{"Enable", "0"}}));
  router_state::config("macfilter", section("macfilter", "macfilter", {{"enable", "0"}}));
  router_state::config("system", std::string("config system\n\toption op_mode '") + op_mode + "'\n");
  router_state::mesh(role, 1, 0);
  router_state::brand(0);
}

WlanDetailInfo all_on() {
  WlanDetailInfo info;
  info.beacon_interval = 300;
  info.dtim_period = 2;
  info.band_width_2g = 1;
  info.band_width_5g = 3;
  info.band_width_6g = 4;
  info.power_2g = 27;
  info.power_5g = 24;
  info.power_6g = 21;
  info.multicast_conversion_enable = info.guest_ssid_isolation_enable = 1;
  info.beamforming_5g_enable = info.beamforming_6g_enable = 1;
  info.mu_mimo_enable = info.ofdma_enable = info.multi_ru_enable = info.wps_enable = 1;
  return info;
}

// Every option that a request writes, as "section.option" = value.
using Written = std::map<std::string, std::string>;

Written written(const char* package) {
  Written result;
  const std::string text = platform::read_file((std::string("/etc/config/") + package).c_str()).value_or("");
  std::string name;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = text.find('\n', begin);
    const std::string line = text.substr(begin, end - begin);
    begin = end + 1;
    const std::size_t quote = line.find('\'');
    if (quote == std::string::npos) continue;
    const std::string value = line.substr(quote + 1, line.size() - quote - 2);
    if (line.starts_with("config"))
      name = value;
    else
      result[name + "." + line.substr(8, quote - 9)] = value;
  }
  for (const std::string& ifname : kAccessPoints) {
    for (const char* option : {"disabled", "encryption", "hidden"}) result.erase(ifname + "." + option);
  }
  for (const char* radio : {"wifi0", "wifi1", "wifi2"}) result.erase(std::string(radio) + ".disabled");
  return result;
}

void expect_options(Written& expected, std::initializer_list<const char*> sections, const Options& options) {
  for (const char* name : sections)
    for (const auto& [option, value] : options) expected[std::string(name) + "." + option] = value;
}

// What is written to `wireless` alone.
Written own_options(bool on) {
  const char* const one = on ? "1" : "0";
  Written expected;
  expect_options(expected, {"ath0", "ath1", "ath2"},
                 {{"mcastenhance", on ? "5" : "0"},
                  {"igmpmcasten", one},
                  {"he_ul_mimo", one},
                  {"he_ul_ofdma", one},
                  {"he_dl_ofdma", one},
                  {"set_eht_ulofdma", one}});
  expect_options(expected, {"ath1", "ath2"},
                 {{"set_eht_mu_bfmr", one},
                  {"set_eht_su_bfmr", one},
                  {"he_subfer", one},
                  {"he_mubfer", one},
                  {"vhtsubfer", one},
                  {"vhtmubfer", one}});
  expected["ath0.set_eht_ulmumimo"] = one;
  expected["ath1.set_eht_ulmumimo"] = on ? "3" : "0";
  expected["ath2.set_eht_ulmumimo"] = on ? "7" : "0";
  return expected;
}

// What a controller mirrors.
Written mirrored_options(bool on, int role, bool is_repeater) {
  Written expected{{"wifi0.htmode", "HT40"},
                   {"wifi1.htmode", "EHT160"},
                   {"wifi2.htmode", "EHT320"},
                   {"ath0.txpower", "27"},
                   {"ath1.txpower", "24"},
                   {"ath2.txpower", "21"},
                   {"wifi1.dfs_puncture_en", on ? "1" : "0"}};
  if (!is_repeater) expected["ath01.guest_separation"] = on ? "1" : "0";
  expect_options(expected, {"ath0", "ath1", "ath2"}, {{"bintval", "300"}, {"dtim_period", "2"}});
  if (!is_repeater && role == kMeshRoleController) {
    expect_options(expected, {"ath01", "ath11", "ath21", "ath02", "ath12", "ath22"}, {{"bintval", "300"}});
  }
  if (!is_repeater && role == kMeshRoleNone) {
    expect_options(expected, {"ath01", "ath11", "ath21", "ath04", "ath14", "ath24", "ath05", "ath15", "ath25"},
                   {{"bintval", "300"}});
  }
  expect_options(expected, {"ath0", "ath1"}, {{"wps_state", on ? "2" : "1"}, {"wps_pbc", on ? "1" : "0"}});
  return expected;
}

TEST(SetWlanDetailInfo, EveryRoleAndOperationModeOnAndOff) {
  for (const int role : {kMeshRoleNone, kMeshRoleController, kMeshRoleAgent})
    for (const char* op_mode : {"router", "ap", "re", "repeater"})
      for (const bool on : {true, false}) {
        SCOPED_TRACE(std::to_string(role) + op_mode + (on ? " on" : " off"));
        const bool is_repeater = std::string(op_mode).starts_with("re");
        write_router(role, op_mode);
        WlanDetailInfo info = all_on();
        if (!on) {
          info.multicast_conversion_enable = info.guest_ssid_isolation_enable = 0;
          info.beamforming_5g_enable = info.beamforming_6g_enable = 0;
          info.mu_mimo_enable = info.ofdma_enable = info.multi_ru_enable = info.wps_enable = 0;
        }
        EXPECT_EQ(set_wlan_detail_info(info), 0);
        Written expected = mirrored_options(on, role, is_repeater);
        EXPECT_EQ(written("wireless_for_easymesh"), role == kMeshRoleController ? expected : Written());
        expected.merge(own_options(on));
        EXPECT_EQ(written("wireless"), expected);
      }
}

TEST(SetWlanDetailInfo, EachBandHasItsBeamforming) {
  for (const int flag_5g : {0, 1}) {
    write_router(kMeshRoleNone, "re");
    WlanDetailInfo info = all_on();
    info.beamforming_5g_enable = flag_5g;
    info.beamforming_6g_enable = 1 - flag_5g;
    EXPECT_EQ(set_wlan_detail_info(info), 0);
    EXPECT_EQ(stored("wireless", "ath1", "he_mubfer"), std::to_string(flag_5g));
    EXPECT_EQ(stored("wireless", "ath2", "he_mubfer"), std::to_string(1 - flag_5g));
  }
}

TEST(SetWlanDetailInfo, ShortBeaconIntervalsAreRaised) {
  for (const auto& [interval, expected] : std::initializer_list<std::pair<int, const char*>>{
           {40, "100"}, {99, "100"}, {100, "100"}, {101, "101"}, {1000, "1000"}}) {
    write_router(kMeshRoleNone, "re");
    WlanDetailInfo info = all_on();
    info.beacon_interval = interval;
    EXPECT_EQ(set_wlan_detail_info(info), 0);
    EXPECT_EQ(stored("wireless", "ath2", "bintval"), expected);
  }
}

// A setting that cannot be written fails the rest. The sections are missing one after the other.
TEST(SetWlanDetailInfo, MissingSectionsFail) {
  for (const char* name : {"wifi0", "wifi1", "wifi2", "ath0", "ath1", "ath2", "ath01", "ath25"}) {
    write_router(kMeshRoleNone, "router");
    UciDelSection(nullptr, "wireless", name);
    EXPECT_EQ(set_wlan_detail_info(all_on()), 1) << name;
  }
  write_router(kMeshRoleController, "router");
  UciDelSection(nullptr, "wireless_for_easymesh", "wifi2");
  EXPECT_EQ(set_wlan_detail_info(all_on()), 1);
  EXPECT_EQ(stored("wireless", "wifi2", "htmode"), "EHT320");  // what was written before stays
}

TEST(SetWlanDetailInfo, UnreadableRoleAndOperationModeWriteNothing) {
  write_router(kMeshRoleNone, "router");
  router_state::no_config("button_mesh");
  EXPECT_EQ(set_wlan_detail_info(all_on()), 1);
  write_router(kMeshRoleNone, "router");
  router_state::no_config("system");
  EXPECT_EQ(set_wlan_detail_info(all_on()), 1);
  EXPECT_EQ(written("wireless"), Written());
}

TEST(SetWlanDetailInfo, WidthsOutsideTheTableAreRefused) {
  for (const int width : {-1, 2, 5, 1 << 30}) {
    write_router(kMeshRoleNone, "re");
    WlanDetailInfo info = all_on();
    info.band_width_2g = width;
    EXPECT_EQ(set_wlan_detail_info(info), 1) << width;
    EXPECT_EQ(stored("wireless", "wifi1", "htmode"), "-");
  }
}

}  // namespace

// Every row of the tables of the detail settings, and what is in none.
#include "wireless/detail/detail_tables.h"

#include <climits>
#include <cstring>
#include <set>
#include <string>

#include <gtest/gtest.h>

namespace {

TEST(HtmodeOfWidth, EveryBandAndCode) {
  const char* const expected[3][5] = {{"HT20", "HT40", nullptr, nullptr, nullptr},
                                      {"EHT20", "EHT40", "EHT80", "EHT160", nullptr},
                                      {"EHT20", "EHT40", "EHT80", "EHT160", "EHT320"}};
  for (std::size_t band = 0; band < 3; ++band)
    for (int code = 0; code < 5; ++code) {
      EXPECT_STREQ(wlan_detail::htmode_of_width(band, code), expected[band][code]) << band << ' ' << code;
    }
}

TEST(HtmodeOfWidth, NeverLeavesTheTable) {
  for (const int code : {-1, 5, 6, 1000000, INT_MIN, INT_MAX})
    for (std::size_t band = 0; band < 3; ++band) EXPECT_EQ(wlan_detail::htmode_of_width(band, code), nullptr) << code;
  for (const std::size_t band : {std::size_t{3}, std::size_t{100}, SIZE_MAX}) {
    EXPECT_EQ(wlan_detail::htmode_of_width(band, 0), nullptr) << band;
  }
}

TEST(WidthOfHtmode, EveryRowAndNoOther) {
  const struct {
    const char* htmode;
    int code;
  } rows[] = {{"HT20", 0},   {"EHT20", 0}, {"HT40", 1},   {"EHT40", 1}, {"EHT40+", 1},
              {"EHT40-", 1}, {"EHT80", 2}, {"EHT160", 3}, {"EHT320", 4}};
  EXPECT_EQ(std::size(rows), wlan_detail::kHtmodes.size());
  for (const auto& row : rows) EXPECT_EQ(wlan_detail::width_of_htmode(row.htmode), row.code) << row.htmode;
  for (const char* other : {"", "HT", "HT80", "HE80", "VHT160", "EHT", "EHT3200", "eht20", "EHT20 ", " EHT20", "%s"}) {
    EXPECT_FALSE(wlan_detail::width_of_htmode(other)) << other;
  }
}

// What is written is read back as what was asked for.
TEST(WidthOfHtmode, UndoesHtmodeOfWidth) {
  for (const auto& row : wlan_detail::kWidths)
    for (const char* htmode : row.htmodes) {
      if (htmode != nullptr) {
        EXPECT_EQ(wlan_detail::width_of_htmode(htmode), row.code) << htmode;
      }
    }
}

constexpr int kPowerRows[6][3] = {{100, 27, 24}, {90, 24, 21}, {75, 19, 18}, {50, 13, 12}, {25, 6, 6}, {10, 3, 3}};

TEST(TxPower, EveryRowOfEveryBandBothWays) {
  for (const char* band : {"2.4G", "5G", "6G"})
    for (const auto& row : kPowerRows) {
      const int dbm = row[std::strcmp(band, "2.4G") == 0 ? 1 : 2];
      int out = -7;
      EXPECT_EQ(switch_percent_to_tx_power(band, row[0], out), 0);
      EXPECT_EQ(out, dbm) << band << ' ' << row[0];
      out = -7;
      EXPECT_EQ(switch_tx_power_to_percent(band, dbm, out), 0);
      EXPECT_EQ(out, row[0]) << band << ' ' << dbm;
    }
}

// Every value that no row has leaves the output as it was, and succeeds.
TEST(TxPower, OtherValuesLeaveTheOutput) {
  for (const char* band : {"2.4G", "5G", "6G"}) {
    std::set<int> percents;
    std::set<int> dbms;
    for (const auto& row : kPowerRows) {
      percents.insert(row[0]);
      dbms.insert(row[std::strcmp(band, "2.4G") == 0 ? 1 : 2]);
    }
    for (int value = -5; value <= 130; ++value) {
      int out = -7;
      if (!percents.contains(value)) {
        EXPECT_EQ(switch_percent_to_tx_power(band, value, out), 0);
        EXPECT_EQ(out, -7) << band << ' ' << value;
      }
      if (!dbms.contains(value)) {
        EXPECT_EQ(switch_tx_power_to_percent(band, value, out), 0);
        EXPECT_EQ(out, -7) << band << ' ' << value;
      }
    }
  }
}

TEST(TxPower, UnknownBandsFail) {
  for (const char* band : {"", "2G", "2.4GHz", "5g", "7G", "%s%n"}) {
    int out = -7;
    EXPECT_EQ(switch_percent_to_tx_power(band, 100, out), 1) << band;
    EXPECT_EQ(switch_tx_power_to_percent(band, 24, out), 1) << band;
    EXPECT_EQ(out, -7);
  }
}

template <class Table>
std::string shown(const Table& table) {
  std::string text;
  for (const wlan_detail::Switch& row : table) {
    text += std::string(row.section) + '.' + row.option + '=' + row.on + '\n';
  }
  return text;
}

std::string rows(std::initializer_list<const char*> sections, std::initializer_list<const char*> options) {
  std::string text;
  for (const char* section : sections)
    for (const char* option : options) text += std::string(section) + '.' + option + '\n';
  return text;
}

TEST(SwitchTables, AreTheseRows) {
  EXPECT_EQ(shown(wlan_detail::kMulticast), rows({"ath0", "ath1", "ath2"}, {"mcastenhance=5", "igmpmcasten=1"}));
  const auto beamforming = {"set_eht_mu_bfmr=1", "set_eht_su_bfmr=1", "he_subfer=1",
                            "he_mubfer=1",       "vhtsubfer=1",       "vhtmubfer=1"};
  EXPECT_EQ(shown(wlan_detail::kBeamforming5g), rows({"ath1"}, beamforming));
  EXPECT_EQ(shown(wlan_detail::kBeamforming6g), rows({"ath2"}, beamforming));
  EXPECT_EQ(shown(wlan_detail::kEhtMuMimo),
            "ath1.set_eht_ulmumimo=3\nath2.set_eht_ulmumimo=7\nath0.set_eht_ulmumimo=1\n");
  EXPECT_EQ(shown(wlan_detail::kHeMuMimo), rows({"ath0", "ath1", "ath2"}, {"he_ul_mimo=1"}));
  EXPECT_EQ(shown(wlan_detail::kOfdma),
            rows({"ath0", "ath1", "ath2"}, {"he_ul_ofdma=1", "he_dl_ofdma=1", "set_eht_ulofdma=1"}));
  EXPECT_EQ(shown(wlan_detail::kSteeredSecurity),
            "ath0.encryption=psk2+ccmp\nath1.encryption=psk2+ccmp\nath2.encryption=ccmp\n" +
                rows({"ath0", "ath1", "ath2"}, {"sae=1", "sae_confirm_immediate=1", "ieee80211w=1"}));
}

template <class Table>
std::string joined(const Table& table) {
  std::string text;
  for (const char* entry : table) (text += entry) += ' ';
  return text;
}

TEST(NameTables, AreTheseNames) {
  EXPECT_EQ(joined(wlan_detail::kSteeredOptions), "ssid hidden wpa_group_rekey key encryption sae owe ");
  EXPECT_EQ(joined(wlan_detail::kFollowedOptions), "ssid hidden wpa_group_rekey key ");
  EXPECT_EQ(joined(wlan_detail::kControllerBeacons), "ath01 ath11 ath21 ath02 ath12 ath22 ");
  EXPECT_EQ(joined(wlan_detail::kRouterBeacons), "ath01 ath11 ath21 ath04 ath14 ath24 ath05 ath15 ath25 ");
}

}  // namespace

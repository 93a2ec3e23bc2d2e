// Tables of the detail settings: channel widths, transmit power, the options behind each switch, band steering.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace wlan_detail {

// --- Channel widths. The codes differ from those of the channel routes.

struct Width {
  int code;
  std::array<const char*, 3> htmodes;  // by band 0, 1, 2 (2.4, 5, 6 GHz); nullptr where the band has no such width
};
struct Htmode {
  std::string_view text;
  int code;
};
// clang-format off
inline constexpr std::array<Width, 5> kWidths{{
    {0, {"HT20",  "EHT20",  "EHT20"}},
    {1, {"HT40",  "EHT40",  "EHT40"}},
    {2, {nullptr, "EHT80",  "EHT80"}},
    {3, {nullptr, "EHT160", "EHT160"}},
    {4, {nullptr, nullptr,  "EHT320"}},
}};
inline constexpr std::array<Htmode, 9> kHtmodes{{
    {"HT20",   0},
    {"EHT20",  0},
    {"HT40",   1},
    {"EHT40",  1},
    {"EHT40+", 1},
    {"EHT40-", 1},
    {"EHT80",  2},
    {"EHT160", 3},
    {"EHT320", 4},
}};

// --- Transmit power: what clients call a percentage, and the driver's value in dBm.

struct Power {
  int percent;
  int dbm_2g;
  int dbm_5g_6g;
};
inline constexpr std::array<Power, 6> kPowers{{
    {100, 27, 24},
    { 90, 24, 21},
    { 75, 19, 18},
    { 50, 13, 12},
    { 25,  6,  6},
    { 10,  3,  3},
}};

// --- Switches. Off is "0" everywhere. The rows are written in their order, to package `wireless` alone.

struct Switch {
  const char* section;
  const char* option;
  const char* on;
};
inline constexpr std::array<Switch, 6> kMulticast{{
    {"ath0", "mcastenhance", "5"},
    {"ath0", "igmpmcasten",  "1"},
    {"ath1", "mcastenhance", "5"},
    {"ath1", "igmpmcasten",  "1"},
    {"ath2", "mcastenhance", "5"},
    {"ath2", "igmpmcasten",  "1"},
}};
inline constexpr std::array<Switch, 6> kBeamforming5g{{
    {"ath1", "set_eht_mu_bfmr", "1"},
    {"ath1", "set_eht_su_bfmr", "1"},
    {"ath1", "he_subfer",       "1"},
    {"ath1", "he_mubfer",       "1"},
    {"ath1", "vhtsubfer",       "1"},
    {"ath1", "vhtmubfer",       "1"},
}};
inline constexpr std::array<Switch, 6> kBeamforming6g{{
    {"ath2", "set_eht_mu_bfmr", "1"},
    {"ath2", "set_eht_su_bfmr", "1"},
    {"ath2", "he_subfer",       "1"},
    {"ath2", "he_mubfer",       "1"},
    {"ath2", "vhtsubfer",       "1"},
    {"ath2", "vhtmubfer",       "1"},
}};
inline constexpr std::array<Switch, 3> kEhtMuMimo{{
    {"ath1", "set_eht_ulmumimo", "3"},
    {"ath2", "set_eht_ulmumimo", "7"},
    {"ath0", "set_eht_ulmumimo", "1"},
}};
inline constexpr std::array<Switch, 3> kHeMuMimo{{
    {"ath0", "he_ul_mimo", "1"},
    {"ath1", "he_ul_mimo", "1"},
    {"ath2", "he_ul_mimo", "1"},
}};
inline constexpr std::array<Switch, 9> kOfdma{{
    {"ath0", "he_ul_ofdma",     "1"},
    {"ath0", "he_dl_ofdma",     "1"},
    {"ath0", "set_eht_ulofdma", "1"},
    {"ath1", "he_ul_ofdma",     "1"},
    {"ath1", "he_dl_ofdma",     "1"},
    {"ath1", "set_eht_ulofdma", "1"},
    {"ath2", "he_ul_ofdma",     "1"},
    {"ath2", "he_dl_ofdma",     "1"},
    {"ath2", "set_eht_ulofdma", "1"},
}};

// --- Band steering.

// What the 5 and 6 GHz main SSIDs get back when it ends, and what they take over from the 2.4 GHz one.
inline constexpr std::array<const char*, 7> kSteeredOptions{
    "ssid", "hidden", "wpa_group_rekey", "key", "encryption", "sae", "owe"};
inline constexpr std::array<const char*, 4> kFollowedOptions{"ssid", "hidden", "wpa_group_rekey", "key"};
// The security that all three have while it lasts.
inline constexpr std::array<Switch, 12> kSteeredSecurity{{
    {"ath0", "encryption",            "psk2+ccmp"},
    {"ath1", "encryption",            "psk2+ccmp"},
    {"ath2", "encryption",            "ccmp"},
    {"ath0", "sae",                   "1"},
    {"ath0", "sae_confirm_immediate", "1"},
    {"ath0", "ieee80211w",            "1"},
    {"ath1", "sae",                   "1"},
    {"ath1", "sae_confirm_immediate", "1"},
    {"ath1", "ieee80211w",            "1"},
    {"ath2", "sae",                   "1"},
    {"ath2", "sae_confirm_immediate", "1"},
    {"ath2", "ieee80211w",            "1"},
}};
// clang-format on

// --- Beacon interval: the access points that follow the three main ones, but for a repeater.

inline constexpr std::array<const char*, 6> kControllerBeacons{"ath01", "ath11", "ath21", "ath02", "ath12", "ath22"};
inline constexpr std::array<const char*, 9> kRouterBeacons{"ath01", "ath11", "ath21", "ath04", "ath14",
                                                           "ath24", "ath05", "ath15", "ath25"};

// `htmode` of a width code on band 0, 1, 2; nullptr (logged) when the band has no such width.
const char* htmode_of_width(std::size_t band, int code);
// The width code of an `htmode`; nullopt for a text that is not in the table.
std::optional<int> width_of_htmode(std::string_view htmode);

}  // namespace wlan_detail

// Band names are "2.4G", "5G" and "6G". 0, or 1 (logged) for another band. A value that is not in the table succeeds
// and leaves `out` as it was.
int switch_tx_power_to_percent(const char* band, int tx_power_dbm, int& out);
int switch_percent_to_tx_power(const char* band, int percent, int& out);

// The interfaces of the repeater, band by band. The names are fixed: other daemons of the platform know them.
#pragma once

#include <array>
#include <cstddef>

struct Band {
  const char* name;     // as repeater.repeater_band.repeater_select_band tells it
  const char* radio;    // UCI section of the radio
  const char* ap;       // the local access point
  const char* station;  // joins the upstream access point
  const char* extra_ap;
  const char* ap_mld;
};

inline constexpr std::size_t k24g = 0;
inline constexpr std::size_t k5g = 1;
inline constexpr std::size_t k6g = 2;
inline constexpr std::size_t kBandCount = 3;

inline constexpr std::array<Band, kBandCount> kBands{{
    {"2.4GHz", "wifi0", "ath02", "ath03", "ath05", "mld4"},
    {"5GHz", "wifi1", "ath12", "ath13", "ath15", "mld5"},
    {"6GHz", "wifi2", "ath22", "ath23", "ath25", "mld6"},
}};

// Groups the stations of a multi-link uplink.
inline constexpr const char* kStationMld = "mld7";

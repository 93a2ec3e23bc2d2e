// The interfaces of a repeater, band by band.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "domain/interface_plan.h"

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
    {"2.4GHz", kRadios[k24g].section, kBackhaulSsids[k24g], kStations[k24g], kMloLinks[k24g], "mld4"},
    {"5GHz", kRadios[k5g].section, kBackhaulSsids[k5g], kStations[k5g], kMloLinks[k5g], "mld5"},
    {"6GHz", kRadios[k6g].section, kBackhaulSsids[k6g], kStations[k6g], kMloLinks[k6g], "mld6"},
}};

inline constexpr std::array<std::size_t, kBandCount> kEveryBand{k24g, k5g, k6g};
inline constexpr std::span<const std::size_t> kBands24And5 = std::span(kEveryBand).first<2>();
inline constexpr std::span<const std::size_t> kBands5And6 = std::span(kEveryBand).last<2>();

// A multi-link (MLO) uplink.
struct MloVariant {
  int code;                            // of multiLinkOperationEnable
  const char* stored;                  // as repeater.repeater_band.mlo holds it
  std::span<const std::size_t> bands;  // its stations, in the order in which they are written
};
inline constexpr std::array<MloVariant, 3> kMloVariants{{
    {1, "1", kBands24And5},
    {2, "2", kBands5And6},
    {3, "3", kEveryBand},
}};
// The variant that is stored as this text; nullptr when there is none, as for "0".
constexpr const MloVariant* find_mlo_variant(std::string_view stored) {
  for (const MloVariant& variant : kMloVariants) {
    if (stored == variant.stored) return &variant;
  }
  return nullptr;
}

// Groups the stations of a multi-link uplink.
inline constexpr const char* kStationMld = "mld7";

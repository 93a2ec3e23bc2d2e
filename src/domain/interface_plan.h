// The interface plan: radios, access points and stations of the router, the SSID slots that a client sees, and the
// MLD interfaces that carry them.
#pragma once

#include <array>
#include <span>
#include <string_view>

// A radio per band 0, 1, 2 (2.4, 5, 6 GHz).
struct Radio {
  const char* section;  // wifi-device section of package wireless, also the device name
  const char* led;      // LED that shows whether the radio is on
};
inline constexpr std::array<Radio, 3> kRadios{{
    {"wifi0", "led_2g"},
    {"wifi1", "led_5g"},
    {"wifi2", "led_6g"},
}};

// wifi-iface sections of package wireless, also the device names, in the order of the bands.
inline constexpr std::array<const char*, 3> kMainSsids{"ath0", "ath1", "ath2"};
inline constexpr std::array<const char*, 3> kGuestSsids{"ath01", "ath11", "ath21"};
inline constexpr std::array<const char*, 3> kBackhaulSsids{"ath02", "ath12", "ath22"};  // second SSIDs of a repeater
inline constexpr std::array<const char*, 3> kStations{"ath03", "ath13", "ath23"};
inline constexpr std::array<const char*, 3> kCopySsids{"ath04", "ath14", "ath24"};
inline constexpr std::array<const char*, 3> kMloLinks{"ath05", "ath15", "ath25"};

// One SSID as a client sees it, or one row of the MLO interface table. The tables are constants: an answer that shows
// another band label changes its own copy.
struct SsidSlot {
  const char* ssid_name;  // label for the client; nullptr in the MLO interface table
  int mlo_mode;           // 0 in the SSID tables; the MLO mode that a row of the MLO interface table serves
  const char* band;       // band label for the client
  const char* ifname;     // wifi-iface section; nullptr for the two slots that stand for several
  const char* radio;      // wifi-device section, or nullptr
  const char* mld;        // MLD that carries the slot outside a mesh, or nullptr
  unsigned link_id;       // link number inside the MLD: 0 = 2.4 GHz, 1 = 5 GHz, 2 = 6 GHz
};

inline constexpr const char* kMloSlotName = "MLO SSID";
inline constexpr const char* kMeshSlotName = "Mesh SSID";
inline constexpr const char* kZeroBssid = "00:00:00:00:00:00";

inline constexpr std::array<SsidSlot, 11> kRouterSlots{{
    {"SSID1", 0, "2.4GHz", "ath0", "wifi0", "mld1", 0},
    {"SSID2", 0, "2.4GHz", "ath01", "wifi0", "mld4", 0},
    {"SSID3", 0, "2.4GHz", "ath04", "wifi0", "mld7", 0},
    {"SSID4", 0, "5GHz", "ath1", "wifi1", "mld2", 1},
    {"SSID5", 0, "5GHz", "ath11", "wifi1", "mld5", 1},
    {"SSID6", 0, "5GHz", "ath14", "wifi1", "mld8", 1},
    {"SSID7", 0, "6GHz", "ath2", "wifi2", "mld3", 2},
    {"SSID8", 0, "6GHz", "ath21", "wifi2", "mld6", 2},
    {"SSID9", 0, "6GHz", "ath24", "wifi2", "mld9", 2},
    {kMloSlotName, 0, "2.4GHz", nullptr, nullptr, nullptr, 0},
    {kMeshSlotName, 0, "5GHz,6GHz", nullptr, nullptr, nullptr, 0},
}};

// Operation mode "re".
inline constexpr std::array<SsidSlot, 8> kRepeaterSlots{{
    {"SSID1", 0, "2.4GHz", "ath0", "wifi0", "mld1", 0},
    {"SSID2", 0, "2.4GHz", "ath02", "wifi0", "mld4", 0},
    {"SSID3", 0, "5GHz", "ath1", "wifi1", "mld2", 1},
    {"SSID4", 0, "5GHz", "ath12", "wifi1", "mld5", 1},
    {"SSID5", 0, "6GHz", "ath2", "wifi2", "mld3", 2},
    {"SSID6", 0, "6GHz", "ath22", "wifi2", "mld6", 2},
    {kMloSlotName, 0, "2.4GHz", nullptr, nullptr, nullptr, 0},
    {kMeshSlotName, 0, "5GHz", nullptr, nullptr, nullptr, 0},
}};

// Where the MLO SSID of an MLO mode is read.
inline constexpr std::array<SsidSlot, 5> kMloInterfaces{{
    {nullptr, 0, "2.4GHz,5GHz", "ath05", "wifi0", "mld0", 0},
    {nullptr, 1, "2.4GHz,5GHz", "ath05", "wifi0", "mld0", 0},
    {nullptr, 2, "2.4GHz,6GHz", "ath05", "wifi0", "mld0", 0},
    {nullptr, 3, "5GHz,6GHz", "ath15", "wifi1", "mld0", 0},
    {nullptr, 4, "2.4GHz,5GHz,6GHz", "ath05", "wifi0", "mld0", 0},
}};

// The slots of an operation mode ("re" or any other).
std::span<const SsidSlot> ssid_slots(std::string_view op_mode);
// The slot of that name among the repeater's (flag 1) or the router's slots; nullptr when there is none.
const SsidSlot* find_wireless_config(int repeater_flag, const char* ssid_name);
// The row of an MLO mode (0..4), or nullptr.
const SsidSlot* find_mlo_interface(int mlo_mode);

// What one SSID slot says, and its readers.
#pragma once

#include <cstddef>
#include <string>

#include "answer/json_text.h"
#include "interface_plan.h"

inline constexpr std::size_t kSsidMax = 32;  // bytes, as in the two below
inline constexpr std::size_t kPasswordMax = 64;
inline constexpr std::size_t kSsidSize = kSsidMax + 1;  // with the end, as UCI's readers count
inline constexpr std::size_t kPasswordSize = kPasswordMax + 1;

struct WirelessIfaceInfo {
  std::string ssid;  // at most 32 bytes
  int ssid_status = 0;
  std::string bssid;     // at most 31 bytes
  std::string password;  // at most 64 bytes
  int wifi_security = 0;
  int wifi_stealth = 0;
  int wpa_rekey_interval = 0;  // seconds
};

// All int results: 0 on success, non-zero on failure (logged).

// Options of the slot's access point; what is missing takes its default. Fails only with get_wireless_bssid.
int get_wireless_info(const SsidSlot& slot, WirelessIfaceInfo& info);
// Address of the slot's link in its MLD, or of its radio, or zeros. Fails when the mesh role cannot be read.
int get_wireless_bssid(const SsidSlot& slot, WirelessIfaceInfo& info);
// Address of one link of an MLD, from `iw`. `out_size` counts the terminator of the platform's buffer: 18 at least.
int get_mld_link_mac(const char* mld, unsigned link_id, std::string& out, std::size_t out_size);
// 1 when the access point is not disabled.
int get_copySsid_enable(const char* ifname, int& out);

// The MLO mode: 0 off, 1 = 2.4+5, 2 = 2.4+6, 3 = 5+6, 4 = 2.4+5+6 GHz.
int get_mlo_value(int& out);
// The MLO slot in that mode; `slot` is the answer's own copy, its band label follows the mode.
int get_mlo_info(SsidSlot& slot, WirelessIfaceInfo& info, int mlo_mode);
// The backhaul slot; `slot` is the answer's own copy, its band label follows the mesh mode.
int get_mesh_info(SsidSlot& slot, WirelessIfaceInfo& info, int mesh_enabled);

// The keys "ssidName" to "wpaRekeyInterval".
void add_wireless_config_fields(json::ObjectText& object, const SsidSlot& slot, const WirelessIfaceInfo& info);

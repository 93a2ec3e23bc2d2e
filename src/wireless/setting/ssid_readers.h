// Readers of one access point.
#pragma once

#include <cstddef>
#include <string>

#include "answer/json_text.h"
#include "domain/interface_plan.h"
#include "wireless/setting/ssid_info.h"

// All int results: 0 on success, non-zero on failure (logged).

// Options of the slot's access point; what is missing takes its default. Fails only with get_wireless_bssid.
int get_wireless_info(const SsidSlot& slot, WirelessIfaceInfo& info);
// Address of the slot's link in its MLD, or of its radio, or zeros. Fails when the mesh role cannot be read.
int get_wireless_bssid(const SsidSlot& slot, WirelessIfaceInfo& info);
// Address of one link of an MLD, from `iw`. `out_size` counts the terminator of the platform's buffer: 18 at least.
int get_mld_link_mac(const char* mld, unsigned link_id, std::string& out, std::size_t out_size);
// 1 when the access point is not disabled.
int get_copySsid_enable(const char* ifname, int& out);

// The keys "ssidName" to "wpaRekeyInterval".
void add_wireless_config_fields(json::ObjectText& object, const SsidSlot& slot, const WirelessIfaceInfo& info);

// Writing of the MLO SSID.
#pragma once

#include <cstddef>
#include <string>

#include "wireless/setting/ssid_info.h"

// All int results: 0 on success, 1 on failure (logged). A mesh controller keeps a copy of its wireless options in
// wireless_for_easymesh, which the writers keep in step. They refuse before they write.

// False (logged) where set_mlo_info would fail: for a security that the fronthaul does not know, or a key that would be
// cut.
bool can_set_mlo_info(int mlo_mode, const WirelessIfaceInfo& info, int mesh_enabled);
// The MLO SSID on the links of an MLO mode. Modes that cannot be written clear MLO; a mesh without MLO has none to
// write.
int set_mlo_info(int mlo_mode, const WirelessIfaceInfo& info, int mesh_enabled);
int set_mlo_encryption(const char* ifname, int wifi_security, const char* escaped_password, int mesh_role);
void clear_mlo_config();
inline constexpr std::size_t kEscapedPasswordSize = 261;
// Each ' becomes '\''. Fails (`output` empty) on no input, an `output_size` below kEscapedPasswordSize, or a result
// of more than output_size - 1 bytes.
int escape_single_quotes(const char* input, std::string& output, std::size_t output_size);

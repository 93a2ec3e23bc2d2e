// The writers behind POST /api/v1/wireless/setting, and the checks that come before the first of them.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "wireless/setting/ssid_info.h"

// All int results: 0 on success, 1 on failure (logged). A unit with the role of a controller keeps a copy of its
// wireless options in wireless_for_easymesh; the writers keep it in step. A writer refuses before it writes.

// --- Channels.

// By band 0, 1, 2 (2.4, 5, 6 GHz): -1 off, 0 automatic.
using Channels = std::array<int, kRadios.size()>;

// 1 when one of them is not permitted.
int check_channels(const Channels& channels);
// Channels of the three radios, and their LEDs; all of them or none.
int set_channel_Value(int channel_2g, int channel_5g, int channel_6g);

// --- SSID slots.

// With band steering on, the 5 and 6 GHz main SSIDs take over what the 2.4 GHz one said last, also in an earlier
// request.
struct BandSteeringTemplate {
  WirelessIfaceInfo info;
  bool is_valid = false;
};
// What the requests before have left: it belongs to the process. The request loop has one thread.
const BandSteeringTemplate& band_steering_template();

// Whether set_wireless_info would write the slot, after slots that left `model`: 0, or 1 for one that does not exist, a
// password that is none, or a security that the fronthaul does not know. `model` becomes what this slot leaves.
int check_wireless_info(int repeater_flag, const char* ssid_name, const WirelessIfaceInfo& info,
                        BandSteeringTemplate& model);
// One SSID slot of the repeater's (flag 1) or router's table. Nothing is written for slots without an access point.
int set_wireless_info(int repeater_flag, const char* ssid_name, const WirelessIfaceInfo& info);
// Encryption options and key. `wps_state` becomes 0 when the security rules WPS out, else stays.
int set_wireless_encryption(const WirelessIfaceInfo& info, const char* ifname, int mesh_role, int& wps_state);
// 0 for no password, 8..63 bytes of ASCII, or 64 hexadecimal digits.
int check_wifi_password(const char* password);
// WPS off (0) or on (any other) for ath0 and ath1, unless the MAC filter is on; -1 leaves it alone.
void change_wpsStatus(int wps_state, const char* ifname);

// The fronthaul mirror in repacd for one access point; one without a row in the override table has none.
int set_repacd_info(const WirelessIfaceInfo& info, const char* ifname);
// 1 when set_repacd_info would refuse: the access point has a row, and the security is none of the known codes.
int check_repacd_info(const WirelessIfaceInfo& info, const char* ifname);

// --- The MLO SSID.

// Whether set_mlo_info would write: 1 for a security that the fronthaul does not know, or a key that would be cut.
int check_mlo_info(int mlo_mode, const WirelessIfaceInfo& info, int mesh_enabled);
// The MLO SSID on the links of an MLO mode. Modes that cannot be written clear MLO; a mesh without MLO has none to
// write.
int set_mlo_info(int mlo_mode, const WirelessIfaceInfo& info, int mesh_enabled);
int set_mlo_encryption(const char* ifname, int wifi_security, const char* escaped_password, int mesh_role);
void clear_mlo_config();
inline constexpr std::size_t kEscapedPasswordSize = 261;
// Each ' becomes '\''. Fails (`output` empty) on no input, an `output_size` below kEscapedPasswordSize, or a result
// of more than output_size - 1 bytes.
int escape_single_quotes(const char* input, std::string& output, std::size_t output_size);

// --- The mesh.

// What a "Mesh SSID" element changes: a sum.
inline constexpr int kMeshEnableChanged = 1;
inline constexpr int kMeshModeChanged = 2;
inline constexpr int kMeshPasswordChanged = 4;
int get_mesh_change_flags(int requested_mesh, int requested_mode, const std::string& password);

enum class MeshChange {
  kNone,
  kSwitchedOn,  // the platform's script that makes this unit a controller was started
  kModeOnly,    // only the mode changed: the request is over, and the mesh has to be closed
};
// What apply_mesh_change comes to; nothing is written or started.
MeshChange choose_mesh_change(int requested_mesh, int flags);
MeshChange apply_mesh_change(int requested_mesh, int requested_mode, const std::string& password);
// The mesh mode that a band label stands for; `fallback` for any other text.
int mesh_mode_of_band(std::string_view band, int fallback);

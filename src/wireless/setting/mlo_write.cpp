// Writing of the MLO SSID.
#include "wireless/setting/mlo_write.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "answer/encrypted_body.h"
#include "domain/interface_plan.h"
#include "domain/security_codes.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_access.h"
#include "uci_section.h"
#include "unit/brand.h"
#include "unit/mesh.h"
#include "wireless/security_options.h"
#include "wireless/setting/repacd_write.h"
#include "wireless/setting/ssid_info.h"
#include "wireless/wireless_options.h"

namespace {

using brands::MloInMesh;

constexpr const char* kWriter = "set_mlo_info";

// Which of kMloLinks are on, by MLO mode. Modes 0 and 2 cannot be written.
struct MloMode {
  int mode;
  std::array<bool, kMloLinks.size()> is_on;
};
constexpr std::array<MloMode, 3> kModes{{
    {1, {true, true, false}},
    {3, {false, true, true}},
    {4, {true, true, true}},
}};
constexpr std::string_view k6gLink = "ath25";

struct Unit {
  const brands::Brand* brand;
  int role;
  bool is_mirrored;  // the mesh is on, and carries the MLO SSID
};

// False when none of the links is there.
bool set_links(const MloMode& mode, const WirelessIfaceInfo& info, bool is_mirrored) {
  bool is_any_there = false;
  for (std::size_t link = 0; link < kMloLinks.size(); ++link) {
    const char* ifname = kMloLinks[link];
    is_any_there = uci::Section("wireless", ifname).exists() || is_any_there;
    set_wireless_option(is_mirrored, ifname, "disabled", mode.is_on[link] ? "0" : "1");
    set_wireless_option(is_mirrored, ifname, "hidden", std::to_string(info.wifi_stealth));
    set_wireless_option(is_mirrored, ifname, "ssid", info.ssid);
    set_wireless_option(is_mirrored, ifname, "wpa_group_rekey", std::to_string(info.wpa_rekey_interval));
  }
  return is_any_there;
}

void set_mld_ssid(const std::string& ssid, const Unit& unit) {
  uci::Section("wireless", unit.is_mirrored ? "mld2" : "mld0").set("mld_ssid", ssid);
  if (unit.brand->mlo_in_mesh == MloInMesh::kMirrored && unit.role == kMeshRoleController) {
    uci::Section("wireless_for_easymesh", "mld0").set("mld_ssid", ssid);
  }
}

WirelessIfaceInfo fronthaul_info(const WirelessIfaceInfo& info, std::string_view link) {
  WirelessIfaceInfo link_info = info;
  if (link == k6gLink) link_info.wifi_security = kSecurityWpa3;
  return link_info;
}

bool set_fronthaul(const WirelessIfaceInfo& info) {
  for (const char* link : kMloLinks) {
    if (set_repacd_info(fronthaul_info(info, link), link) == 0) continue;
    log_error_as(kWriter, "set_repacd_info failed");
    return false;
  }
  return true;
}

// The client chooses between open and not open alone.
int link_security(int requested, const char* link) {
  if (requested == kSecurityOpen) return kSecurityOpen;
  return link == k6gLink ? kSecurityWpa3 : kSecurityMixed;
}

bool is_cut(std::string_view address, std::string_view value) { return address.size() + value.size() > kUciAddressMax; }

// A key that lost its end would lock out every device: it is refused. The addresses are the longest that the writers
// below use.
bool is_key_cut(const std::string& escaped, int wifi_security, const Unit& unit) {
  if (unit.brand->mlo_in_mesh == MloInMesh::kMirrored && is_cut("button_mesh.easymesh.mlo_key=", escaped)) return true;
  if (wifi_security == kSecurityOpen) return false;
  return is_cut(unit.role == kMeshRoleController ? "wireless_for_easymesh.ath05.key=" : "wireless.ath05.key=", escaped);
}

// The key as it is stored; nullopt (logged) when it cannot be.
std::optional<std::string> escape_key(const WirelessIfaceInfo& info, const Unit& unit) {
  std::string escaped;
  if (escape_single_quotes(info.password.c_str(), escaped, kEscapedPasswordSize) == 0 &&
      !is_key_cut(escaped, info.wifi_security, unit)) {
    return escaped;
  }
  log_error_as(kWriter, "Failed to escape password (buffer too small or invalid input)");
  return std::nullopt;
}

bool set_security(int wifi_security, const std::string& escaped, int role) {
  for (const char* link : kMloLinks) {
    if (set_mlo_encryption(link, link_security(wifi_security, link), escaped.c_str(), role) == 0) continue;
    log_error_as(kWriter, "set_mlo_encryption failed");
    return false;
  }
  return true;
}

// What a request for the MLO network comes to.
enum class MloAction { kRefuse, kLeave, kClear, kWrite };
struct MloPlan {
  const MloMode* mode = nullptr;
  Unit unit{&brands::of_index(kBrandOther), kMeshRoleNone, false};
  std::string escaped_key;
};

// Reads alone; refusals are logged.
MloAction plan_mlo(int mlo_mode, const WirelessIfaceInfo& info, int mesh_enabled, MloPlan& plan) {
  plan.unit.brand = &unit::brand();
  if (plan.unit.brand->mlo_in_mesh == MloInMesh::kNone && mesh_enabled == 1) return MloAction::kLeave;
  const auto* mode = std::ranges::find(kModes, mlo_mode, &MloMode::mode);
  if (mode == kModes.end()) return MloAction::kClear;
  plan.mode = mode;
  if (get_mesh_role_value(plan.unit.role) != 0) {
    log_error_as(kWriter, "get_mesh_role_value failed");
    return MloAction::kRefuse;
  }
  plan.unit.is_mirrored = plan.unit.brand->mlo_in_mesh == MloInMesh::kMirrored && mesh_enabled == 1;
  for (const char* link : kMloLinks) {
    if (!plan.unit.is_mirrored || can_set_repacd_info(fronthaul_info(info, link), link)) continue;
    log_error_as(kWriter, "set_repacd_info failed");
    return MloAction::kRefuse;
  }
  const std::optional<std::string> escaped = escape_key(info, plan.unit);
  if (!escaped) return MloAction::kRefuse;
  plan.escaped_key = *escaped;
  return MloAction::kWrite;
}

bool write_mlo(const MloPlan& plan, const WirelessIfaceInfo& info) {
  if (set_links(*plan.mode, info, plan.unit.is_mirrored)) set_mld_ssid(info.ssid, plan.unit);
  if (plan.unit.is_mirrored && !set_fronthaul(info)) return false;
  if (!set_security(info.wifi_security, plan.escaped_key, plan.unit.role)) return false;
  os_system("uci commit wireless");
  return true;
}

}  // namespace

bool can_set_mlo_info(int mlo_mode, const WirelessIfaceInfo& info, int mesh_enabled) {
  MloPlan plan;
  return plan_mlo(mlo_mode, info, mesh_enabled, plan) != MloAction::kRefuse;
}

int set_mlo_info(int mlo_mode, const WirelessIfaceInfo& info, int mesh_enabled) {
  MloPlan plan;
  switch (plan_mlo(mlo_mode, info, mesh_enabled, plan)) {
    case MloAction::kRefuse:
      return 1;
    case MloAction::kLeave:
      log_error("%s device does not support MLO with mesh enabled", plan.unit.brand->log_name);
      return 0;
    case MloAction::kClear:
      log_error("mlo value %d is not supported.", mlo_mode);
      clear_mlo_config();
      return 0;
    case MloAction::kWrite:
      break;
  }
  return write_mlo(plan, info) ? 0 : 1;
}

int set_mlo_encryption(const char* ifname, int wifi_security, const char* escaped_password, int mesh_role) {
  if (unit::brand().mlo_in_mesh == MloInMesh::kMirrored && std::string_view(ifname) == k6gLink &&
      *escaped_password != '\0') {
    unit::easymesh().set("mlo_key", escaped_password);
  }
  const security::Writing* writing = security::find_writing(security::kMloWritings, wifi_security);
  if (writing == nullptr) {
    log_error("set_mlo_encryption: unknown encryption type %d", wifi_security);
    return 1;
  }
  for (const uci::Section& link : wireless_sections(mesh_role == kMeshRoleController, ifname)) {
    security::write(*writing, link, escaped_password);
  }
  return 0;
}

void clear_mlo_config() {
  uci::Section("wireless", "mld0").remove();
  for (const char* link : kMloLinks) uci::Section("wireless", link).remove("mld");
  uci::Section("wireless", "wifi2").remove("enable_ema");
  for (const char* link : kMloLinks) uci::Section("wireless", link).set("disabled", "1");
  os_system("uci commit wireless");
}

int escape_single_quotes(const char* input, std::string& output, std::size_t output_size) {
  output.clear();
  if (input == nullptr || output_size < kEscapedPasswordSize) return 1;
  std::string escaped = escape_single_quotes(std::string_view(input));
  if (escaped.size() > output_size - 1) return 1;
  output = std::move(escaped);
  return 0;
}

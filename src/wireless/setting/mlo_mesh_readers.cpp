// Readers of the two slots that stand for several access points: MLO and mesh backhaul.
#include "wireless/setting/mlo_mesh_readers.h"

#include "domain/interface_plan.h"
#include "domain/security_codes.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/brand.h"
#include "unit/mesh.h"
#include "wireless/setting/ssid_info.h"
#include "wireless/setting/ssid_readers.h"

namespace {

constexpr const char* kMeshInfo = "get_mesh_info";

constexpr std::size_t kNumberSize = 4;
constexpr std::size_t kFlagSize = 8;
constexpr std::size_t kBssidSize = 32;

// By (ath05, ath15, ath25 disabled) as a binary number: 0 is all links on, 7 all off.
constexpr std::array<int, 8> kModeOfDisabledLinks{4, 1, 2, 0, 3, 0, 0, 0};

std::size_t is_link_disabled(const char* ifname) {
  return uci::Section("wireless", ifname).read_number("disabled", kFlagSize).value_or(1) == 1 ? 1 : 0;
}

// SSID and key of the backhaul: an agent has them in its second access point.
struct BackhaulPlace {
  const char* package;
  const char* section;
  const char* ssid;
  const char* key;
};
constexpr BackhaulPlace kAgentBackhaul{"wireless", "@wifi-iface[1]", "ssid", "key"};
constexpr BackhaulPlace kBackhaul{"repacd", "MAPConfig", "BackhaulSSID", "BackhaulKey"};

// False (logged) when one of them cannot be read.
bool read_backhaul(WirelessIfaceInfo& info, int role) {
  const BackhaulPlace& place = role == kMeshRoleAgent ? kAgentBackhaul : kBackhaul;
  const uci::Section section(place.package, place.section);
  const auto ssid = section.read(place.ssid, kSsidSize);
  if (!ssid) {
    log_error_as(kMeshInfo, "Failed to get BackhaulSSID");
    return false;
  }
  const auto key = section.read(place.key, kPasswordSize);
  if (!key) {
    log_error_as(kMeshInfo, "Failed to get BackhaulKey");
    return false;
  }
  info.ssid = *ssid;
  info.password = *key;
  return true;
}

bool read_backhaul_state(WirelessIfaceInfo& info, int mesh_enabled) {
  info.bssid = kZeroBssid;
  if (mesh_enabled != 1) return true;
  const std::optional<int> status = uci::Section("repacd", "repacd").read_number("Enable", kNumberSize);
  if (!status) {
    log_error_as(kMeshInfo, "Failed to get ssidStatusValue");
    return false;
  }
  info.ssid_status = *status;
  if (const auto bssid = uci::Section("repacd", "MAPConfig").read("mld_mac_addr", kBssidSize)) {
    info.bssid = *bssid;
  } else {
    log_error_as(kMeshInfo, "Failed to get bssid, return default value");
  }
  return true;
}

}  // namespace

int get_mlo_value(int& out) {
  const brands::Brand& brand = unit::brand();
  int mesh = 0;
  if (get_mesh_value(mesh) != 0) {
    log_error("Failed to get meshRole");
    return 1;
  }
  if (brand.mlo_in_mesh == brands::MloInMesh::kNone && mesh == 1) {
    int mode = 0;
    if (get_mesh_mode_value(mode) != 0) {
      log_error("Failed to get mesh_mode");
      return 1;
    }
    out = mode == kMeshMode24And5 ? 1 : 3;
    return 0;
  }
  std::size_t disabled = 0;
  for (const char* link : kMloLinks) disabled = disabled * 2 + is_link_disabled(link);
  out = kModeOfDisabledLinks[disabled];
  return 0;
}

int get_mlo_info(SsidSlot& slot, WirelessIfaceInfo& info, int mlo_mode) {
  const brands::Brand& brand = unit::brand();
  int mesh = 0;
  if (get_mesh_value(mesh) != 0) {
    log_error("Failed to get meshRole");
    return 1;
  }
  if (brand.mlo_in_mesh == brands::MloInMesh::kNone && mesh == 1) return get_mesh_info(slot, info, 1);
  if (mlo_mode == 0) return get_wireless_info(kRouterSlots[0], info);
  const SsidSlot* row = find_mlo_interface(mlo_mode);
  if (row == nullptr) return 1;
  slot.band = row->band;
  return get_wireless_info(*row, info);
}

int get_mesh_info(SsidSlot& slot, WirelessIfaceInfo& info, int mesh_enabled) {
  int role = kMeshRoleNone;
  if (get_mesh_role_value(role) != 0) {
    log_error("Failed to get meshRole");
    return 1;
  }
  if (!read_backhaul(info, role) || !read_backhaul_state(info, mesh_enabled)) return 1;
  const auto mode = unit::easymesh().read("mode", kNumberSize);
  if (!mode) {
    log_error("Failed to get meshMode");
    return 1;
  }
  if (*mode == "1") slot.band = "2.4GHz,5GHz";
  if (*mode == "0") slot.band = "2.4GHz,5GHz,6GHz";
  info.wifi_security = kSecurityWpa3;
  info.wpa_rekey_interval = 1800;
  info.wifi_stealth = 0;
  return 0;
}

// Checking and writing of one SSID slot.
#include "wireless/setting/ssid_write.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "domain/interface_plan.h"
#include "domain/security_codes.h"
#include "platform/log.h"
#include "platform/text.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/brand.h"
#include "unit/mesh.h"
#include "unit/mesh_mld.h"
#include "wireless/detail/band_steering.h"
#include "wireless/security_options.h"
#include "wireless/setting/repacd_write.h"
#include "wireless/setting/ssid_info.h"
#include "wireless/wireless_options.h"
#include "wireless/wps/wps_change.h"

namespace {

constexpr const char* kInfo = "set_wireless_info";

constexpr const char* kEncryption = "set_wireless_encryption";

BandSteeringTemplate process_template;

// `info` as it is written after slots that left `model`, which becomes what this slot leaves.
WirelessIfaceInfo follow_band_steering(std::string_view ssid_name, WirelessIfaceInfo info,
                                       BandSteeringTemplate& model) {
  int enabled = 0;
  if (get_bandSteering_Value(enabled) != 0 || enabled != 1) return info;
  if (ssid_name == "SSID1") model = {info, true};
  if (ssid_name == "SSID8") model.is_valid = false;
  if (!model.is_valid || (ssid_name != "SSID4" && ssid_name != "SSID7")) return info;
  info.ssid = model.info.ssid;
  info.password = model.info.password;
  info.wifi_stealth = model.info.wifi_stealth;
  info.wpa_rekey_interval = model.info.wpa_rekey_interval;
  if (ssid_name == "SSID4") info.wifi_security = model.info.wifi_security;  // 6 GHz keeps its own
  return info;
}

// A mesh takes access points away; one that is not there must not name the MLD, which another one may have now.
void set_mld_ssid(const char* package, const SsidSlot& slot, const char* mld, const std::string& ssid) {
  if (mld != nullptr && uci::Section(package, slot.ifname).exists()) uci::Section(package, mld).set("mld_ssid", ssid);
}

void set_ssid(const SsidSlot& slot, const std::string& ssid, bool is_controller) {
  set_wireless_option(is_controller, slot.ifname, "ssid", ssid);
  const char* mld = slot.mld;
  if (is_controller) {
    set_mld_ssid("wireless_for_easymesh", slot, slot.mld, ssid);
    if (const char* mesh_mld = get_mesh_mld_by_ifname(slot.ifname)) mld = mesh_mld;
  }
  set_mld_ssid("wireless", slot, mld, ssid);
}

bool set_fronthaul(const SsidSlot& slot, const WirelessIfaceInfo& info) {
  if (unit::brand().fronthaul_slot == slot.ssid_name) {
    const uci::Section mesh("repacd", "MAPConfig");
    mesh.set("FronthaulSSID", info.ssid);
    mesh.set("FronthaulKey", info.password);
  }
  if (set_repacd_info(info, slot.ifname) == 0) return true;
  log_error_as(kInfo, "set_repacd_info failed");
  return false;
}

bool is_password_usable(const WirelessIfaceInfo& info) {
  if (info.wifi_security == kSecurityOpen || check_wifi_password(info.password.c_str()) == 0) return true;
  log_error_as(kEncryption, "Password check failed");
  return false;
}

// What a slot can be refused for, before the first of its options is written.
bool can_set_slot(const SsidSlot& slot, const WirelessIfaceInfo& info, bool is_controller) {
  if (!is_password_usable(info)) {
    log_error_as(kInfo, "set_wireless_encryption failed");
    return false;
  }
  if (!is_controller || can_set_repacd_info(info, slot.ifname)) return true;
  log_error_as(kInfo, "set_repacd_info failed");
  return false;
}

// The whole slot, once it is known to have an access point and to be written.
bool set_slot(const SsidSlot& slot, const WirelessIfaceInfo& info, bool is_controller) {
  set_wireless_option(is_controller, slot.ifname, "disabled", info.ssid_status == 0 ? "1" : "0");
  set_ssid(slot, info.ssid, is_controller);

  int wps_state = kLeaveWpsAlone;
  const int role = is_controller ? kMeshRoleController : kMeshRoleNone;
  if (set_wireless_encryption(info, slot.ifname, role, wps_state) != 0) {
    log_error_as(kInfo, "set_wireless_encryption failed");
    return false;
  }
  if (is_controller && !set_fronthaul(slot, info)) return false;
  if (info.wifi_stealth == 1) change_wpsStatus(0, slot.ifname);
  set_wireless_option(is_controller, slot.ifname, "hidden", std::to_string(info.wifi_stealth));
  set_wireless_option(is_controller, slot.ifname, "wpa_group_rekey", std::to_string(info.wpa_rekey_interval));
  return true;
}

// The slot of a request and this unit's part in the mesh.
struct Target {
  const SsidSlot* slot = nullptr;
  bool is_controller = false;
};

// False (logged) when there is no such slot.
bool find_target(int repeater_flag, const char* ssid_name, Target& target) {
  if (ssid_name == nullptr) return false;
  int role = kMeshRoleNone;
  if (get_mesh_role_value(role) != 0) {
    log_error_as(kInfo, "get_mesh_role_value failed");
    return false;
  }
  target = {find_wireless_config(repeater_flag, ssid_name), role == kMeshRoleController};
  if (target.slot == nullptr) log_error_as(kInfo, "Find_wireless_config: ssidName %s not found", ssid_name);
  return target.slot != nullptr;
}

}  // namespace

const BandSteeringTemplate& band_steering_template() { return process_template; }

bool can_set_wireless_info(int repeater_flag, const char* ssid_name, const WirelessIfaceInfo& info,
                           BandSteeringTemplate& model) {
  Target target;
  if (!find_target(repeater_flag, ssid_name, target)) return false;
  if (target.slot->ifname == nullptr) return true;
  return can_set_slot(*target.slot, follow_band_steering(ssid_name, info, model), target.is_controller);
}

int set_wireless_info(int repeater_flag, const char* ssid_name, const WirelessIfaceInfo& info) {
  Target target;
  if (!find_target(repeater_flag, ssid_name, target)) return 1;
  if (target.slot->ifname == nullptr) return 0;
  const WirelessIfaceInfo followed = follow_band_steering(ssid_name, info, process_template);
  const bool is_set = can_set_slot(*target.slot, followed, target.is_controller) &&
                      set_slot(*target.slot, followed, target.is_controller);
  return is_set ? 0 : 1;
}

int set_wireless_encryption(const WirelessIfaceInfo& info, const char* ifname, int mesh_role, int& wps_state) {
  const std::string_view name = ifname;
  if (!is_password_usable(info)) return 1;
  if (info.wifi_security != kSecurityOpen) {
    if (name == kMainSsids[2]) unit::easymesh().set("Key6G", info.password);
    if (name == kMainSsids[1]) unit::easymesh().set("Key5G", info.password);
  }
  const auto& table = name.starts_with(kMainSsids[2]) ? security::kSsidWritings6g : security::kSsidWritings;
  const security::Writing* writing = security::find_writing(table, info.wifi_security);
  if (info.wifi_security == kSecurityWpa3 || info.wifi_security == kSecurityOpen) wps_state = 0;
  for (const uci::Section& access_point : wireless_sections(mesh_role == kMeshRoleController, ifname)) {
    if (writing != nullptr) security::write(*writing, access_point, info.password);
    change_wpsStatus(wps_state, ifname);
  }
  return 0;
}

int check_wifi_password(const char* password) {
  constexpr std::size_t kShortest = 8;
  constexpr std::size_t kHexKey = 64;
  const std::string_view text = password == nullptr ? "" : password;
  if (text.empty()) return 0;
  const auto is_ascii = [](unsigned char c) { return c < 0x80; };
  if (text.size() == kHexKey) return std::ranges::all_of(text, platform::is_hex_digit) ? 0 : 1;
  const bool is_passphrase = text.size() >= kShortest && text.size() < kHexKey;
  return is_passphrase && std::ranges::all_of(text, is_ascii) ? 0 : 1;
}

// Readers of one access point.
#include "wireless/setting/ssid_readers.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "domain/interface_plan.h"
#include "platform/log.h"
#include "platform/process.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/brand.h"
#include "unit/mesh.h"
#include "unit/mesh_mld.h"
#include "wireless/iw_reading.h"
#include "wireless/security_options.h"
#include "wireless/setting/ssid_info.h"

namespace {

constexpr const char* kInfo = "get_wireless_info";

constexpr std::size_t kFlagSize = 8;
constexpr std::size_t kBssidSize = 32;
constexpr std::size_t kMacSize = 18;

template <std::size_t N>
bool contains(const std::array<const char*, N>& names, std::string_view name) {
  return std::ranges::find(names, name, [](const char* known) { return std::string_view(known); }) != names.end();
}

// Access points that a mesh configuration does not have count as disabled.
const char* default_disabled(std::string_view ifname, const brands::Brand& brand, int role) {
  const bool is_absent = (role == kMeshRoleAgent && contains(kBackhaulSsids, ifname)) ||
                         (!brand.has_copies_in_mesh && role == kMeshRoleController && contains(kCopySsids, ifname));
  return is_absent ? "1" : "0";
}

int mesh_role_or_none() {
  int role = kMeshRoleNone;
  if (get_mesh_role_value(role) != 0) log_error_as(kInfo, "Failed to get mesh role");
  return role;
}

// `fallback`, told in the log by `name`, for an option that cannot be read.
std::string read_or_default(const uci::Section& access_point, const char* option, std::size_t size,
                            const char* fallback, const char* name) {
  const std::optional<std::string> value = access_point.read(option, size);
  if (!value) {
    log_error_as(kInfo, "Failed to get %s for interface %s, return default value", name, access_point.name().c_str());
  }
  return value.value_or(fallback);
}

int number(const std::string& text) { return std::atoi(text.c_str()); }

}  // namespace

int get_wireless_info(const SsidSlot& slot, WirelessIfaceInfo& info) {
  const char* ifname = slot.ifname;
  const brands::Brand& brand = unit::brand();
  const char* disabled = default_disabled(ifname, brand, mesh_role_or_none());
  const uci::Section access_point("wireless", ifname);
  info.ssid = read_or_default(access_point, "ssid", kSsidSize, "", "SSID");
  info.ssid_status =
      number(read_or_default(access_point, "disabled", kFlagSize, disabled, "disabled status")) != 1 ? 1 : 0;
  if (get_wireless_bssid(slot, info) != 0) {
    log_error("get_wireless_info: Failed to get BSSID for interface %s", ifname);
    return 1;
  }
  info.password = read_or_default(access_point, "key", kPasswordSize, "", "password");
  if (get_encryption_mode_value(ifname, info.wifi_security) != 0) {
    log_error("Failed to get wifi security for interface %s", ifname);
  }
  info.wifi_stealth = number(read_or_default(access_point, "hidden", kFlagSize, "0", "hidden status"));
  const std::string rekey = read_or_default(access_point, "wpa_group_rekey", kFlagSize, "1800", "WPA rekey interval");
  info.wpa_rekey_interval = number(rekey);
  return 0;
}

int get_wireless_bssid(const SsidSlot& slot, WirelessIfaceInfo& info) {
  int role = kMeshRoleNone;
  if (get_mesh_role_value(role) != 0) {
    log_error("Failed to get meshRole");
    return 1;
  }
  const char* mld = slot.mld;
  if (role == kMeshRoleController || role == kMeshRoleAgent) {
    if (const char* mesh_mld = get_mesh_mld_by_ifname(slot.ifname)) mld = mesh_mld;
  }
  if (mld != nullptr && *mld != '\0' && get_mld_link_mac(mld, slot.link_id, info.bssid, kBssidSize) == 0) return 0;

  info.bssid = kZeroBssid;
  if (slot.radio == nullptr || *slot.radio == '\0') {
    log_error("get_wireless_bssid: Radio name is NULL, return default value");
    return 0;
  }
  if (const auto mac = uci::Section("wireless", slot.radio).read("macaddr", kMacSize)) {
    info.bssid = *mac;
  } else {
    log_error("Failed to get MAC address for radio %s, return default value", slot.radio);
  }
  return 0;
}

int get_mld_link_mac(const char* mld, unsigned link_id, std::string& out, std::size_t out_size) {
  if (mld == nullptr || out_size < kMacSize) {
    log_error("get_mld_link_mac: Invalid param");
    return 1;
  }
  const platform::ProcessResult result = platform::run({"iw", "dev", mld, "info"});
  if (!result.started) {
    log_error("get_mld_link_mac: popen cmd failed: iw dev %s info", mld);
    return 1;
  }
  const auto address = iw::parse_link_address(result.output, link_id, out_size - 1);
  if (!address) {
    log_error("get_mld_link_mac: No MAC found - mld=%s link=%u", mld, link_id);
    return 1;
  }
  out = *address;
  return 0;
}

int get_copySsid_enable(const char* ifname, int& out) {
  if (ifname == nullptr) {
    log_error("interface is null");
    return 1;
  }
  out = uci::Section("wireless", ifname).read_number("disabled", 4) != 1 ? 1 : 0;
  return 0;
}

void add_wireless_config_fields(json::ObjectText& object, const SsidSlot& slot, const WirelessIfaceInfo& info) {
  object.add("ssidName", slot.ssid_name);
  object.add("band", slot.band);
  object.add("ssidValue", info.ssid);
  object.add("ssidStatus", info.ssid_status);
  object.add("bssid", info.bssid);
  object.add("ssidPassword", info.password);
  object.add("wifiSecurity", info.wifi_security);
  object.add("wifiStealth", info.wifi_stealth);
  object.add("wpaRekeyInterval", info.wpa_rekey_interval);
}

// The fronthaul mirror in package repacd.
#include "wireless/setting/repacd_write.h"

#include <algorithm>

#include "domain/fronthaul_override.h"
#include "domain/security_codes.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "wireless/setting/ssid_info.h"

namespace {

constexpr const char* kWriter = "set_repacd_info";

void set_map_option(const char* option, const std::string& value) {
  uci::Section("repacd", "MAPConfig").set(option, value);
}

}  // namespace

bool can_set_repacd_info(const WirelessIfaceInfo& info, const char* ifname) {
  if (find_repacd_override(ifname) == nullptr || info.wifi_security == kSecurityOpen) return true;
  const auto* auth = std::ranges::find(fronthaul::kAuths, info.wifi_security, &fronthaul::Auth::code);
  if (auth != fronthaul::kAuths.end()) return true;
  log_error_as(kWriter, "set_repacd_info: unknown wifiSecurity %d", info.wifi_security);
  return false;
}

int set_repacd_info(const WirelessIfaceInfo& info, const char* ifname) {
  if (ifname == nullptr) {
    log_error("set_repacd_info: WirelessInfo or interface is NULL");
    return 1;
  }
  const fronthaul::Override* row = find_repacd_override(ifname);
  if (row == nullptr) {
    log_debug("set_repacd_info: repacd_config_sync is NULL, no need to set");
    return 0;
  }
  if (!can_set_repacd_info(info, ifname)) return 1;
  if (!info.ssid.empty()) set_map_option(row->ssid, info.ssid);
  if (!info.password.empty()) set_map_option(row->key, info.password);
  const auto* auth = std::ranges::find(fronthaul::kAuths, info.wifi_security, &fronthaul::Auth::code);
  if (auth != fronthaul::kAuths.end()) {
    set_map_option(row->auth, auth->value);
  } else {
    set_map_option(row->key, fronthaul::kOpenKey);
  }
  os_system("uci commit repacd");
  return 0;
}

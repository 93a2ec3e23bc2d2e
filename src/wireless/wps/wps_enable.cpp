// WPS as the detail settings switch it: never without a radio, on open or WPA3-only or hidden networks.
#include "wireless/wps/wps_enable.h"

#include <array>
#include <cstdlib>
#include <optional>
#include <string>

#include "access.h"
#include "domain/mesh_codes.h"
#include "domain/security_codes.h"
#include "interface_plan.h"
#include "platform/log.h"
#include "uci_access.h"
#include "wireless/security_options.h"
#include "wireless/wireless_options.h"

namespace {

constexpr const char* kWriter = "set_wps_enable";

constexpr std::size_t kFlagSize = 4;
constexpr std::size_t kBands = 2;  // WPS is of 2.4 and 5 GHz alone
constexpr const char* kBandNames[kBands] = {"2G", "5G"};

// What decides over WPS on one band.
struct Band {
  int security = 0;
  int hidden = 0;
  // WPS hands out a passphrase: it needs WPA2, alone or beside WPA3.
  [[nodiscard]] bool has_wpa2() const { return security != kSecurityOpen && security != kSecurityWpa3; }
};

bool read_disabled(const char* section, bool& out, const char* what) {
  const auto disabled = uci_read("wireless", section, "disabled", kFlagSize);
  if (!disabled) {
    log_error_as(kWriter, "Failed to get %s disable status", what);
    return false;
  }
  out = std::atoi(disabled->c_str()) == 1;
  return true;
}

// nullopt (logged) when it cannot be told.
std::optional<bool> has_enabled_band() {
  std::array<bool, kBands> radio_off{};
  std::array<bool, kBands> ssid_off{};
  if (!read_disabled(kRadios[0].section, radio_off[0], "2G radio") ||
      !read_disabled(kRadios[1].section, radio_off[1], "5G radio") ||
      !read_disabled(kMainSsids[0], ssid_off[0], "2G band") || !read_disabled(kMainSsids[1], ssid_off[1], "5G band")) {
    return std::nullopt;
  }
  if ((!radio_off[0] && !ssid_off[0]) || (!radio_off[1] && !ssid_off[1])) return true;
  log_error_as(kWriter, "2G and 5G band is disabled, cannot set WPS status");
  return false;
}

using Bands = std::array<Band, kBands>;

// nullopt (logged) when a band cannot be read.
std::optional<Bands> read_bands() {
  Bands bands;
  for (std::size_t i = 0; i < kBands; ++i) {
    if (get_encryption_mode_value(kMainSsids[i], bands[i].security) == 0) continue;
    log_error_as(kWriter, "Failed to get %s encryption value", kBandNames[i]);
    return std::nullopt;
  }
  for (std::size_t i = 0; i < kBands; ++i) {
    if (get_hidden_value(kMainSsids[i], bands[i].hidden) == 0) continue;
    log_error_as(kWriter, "Failed to get %s hidden value", kBandNames[i]);
    return std::nullopt;
  }
  return bands;
}

bool permit_wps(const Bands& bands) {
  if (!bands[0].has_wpa2() && !bands[1].has_wpa2()) {
    log_error_as(kWriter, "2G and 5G encryption modes do not match");
    return false;
  }
  if (bands[0].hidden != 1 || bands[1].hidden != 1) return true;
  log_error_as(kWriter, "2G and 5G hidden_value  not match");
  return false;
}

bool set_wps_option(bool is_mirrored, const char* ifname, const char* option, const char* value) {
  for (const char* package : wireless_packages(is_mirrored)) {
    if (UciSetOption("/etc/config", package, ifname, option, value) == 0) continue;
    log_error_as(kWriter, "Failed to set %s.%s.%s", package, ifname, option);
    return false;
  }
  return true;
}

bool set_wps(std::size_t band, bool is_on, bool is_mirrored) {
  return set_wps_option(is_mirrored, kMainSsids[band], "wps_state", is_on ? "2" : "1") &&
         set_wps_option(is_mirrored, kMainSsids[band], "wps_pbc", is_on ? "1" : "0");
}

bool switch_off(bool is_mirrored) { return set_wps(0, false, is_mirrored) && set_wps(1, false, is_mirrored); }

bool switch_on(const Bands& bands, bool is_mirrored) {
  if (!permit_wps(bands)) return false;
  for (std::size_t i = 0; i < kBands; ++i) {
    if (bands[i].has_wpa2() && bands[i].hidden != 1 && !set_wps(i, true, is_mirrored)) return false;
  }
  return true;
}

}  // namespace

int check_wps_enable(int status) {
  if (status != 1) return 0;
  if (has_enabled_band() == false) return 1;
  const std::optional<Bands> bands = read_bands();
  return !bands || permit_wps(*bands) ? 0 : 1;
}

int set_wps_enable(int status, int mesh_role) {
  const bool is_mirrored = mesh_role == kMeshRoleController;
  if (status == 1 && !has_enabled_band().value_or(false)) return 1;
  int mac_filter = 0;
  if (get_mac_filter_enable(mac_filter) != 0) log_error("Failed to get mac filter status return default value");
  if (mac_filter == 1 && status == 0) {
    log_debug("Enable macfilter func, no wps func");
    return switch_off(is_mirrored) ? 0 : 1;
  }
  const std::optional<Bands> bands = read_bands();
  if (!bands) return 1;
  if (status == 1) return switch_on(*bands, is_mirrored) ? 0 : 1;
  if (status == 0) return switch_off(is_mirrored) ? 0 : 1;
  log_error("Invalid status value");
  return 1;
}

int get_hidden_value(const char* ifname, int& out) {
  if (ifname == nullptr) return 1;
  const auto hidden = uci_read("wireless", ifname, "hidden", kFlagSize);
  if (!hidden) log_error("Failed to get hiddenEnable option, return default value 0");
  out = hidden && std::atoi(hidden->c_str()) == 1 ? 1 : 0;
  return 0;
}

// WPS as the detail settings switch it: never without a radio, on open or WPA3-only or hidden networks.
#include "wireless/wps/wps_enable.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "access.h"
#include "domain/interface_plan.h"
#include "domain/mesh_codes.h"
#include "domain/security_codes.h"
#include "platform/log.h"
#include "uci_section.h"
#include "wireless/security_options.h"
#include "wireless/wps/wps_options.h"

namespace {

constexpr const char* kWriter = "set_wps_enable";

constexpr std::size_t kFlagSize = 4;
constexpr std::size_t kBands = wps::kSsids.size();
constexpr const char* kBandNames[kBands] = {"2G", "5G"};

// What decides over WPS on one band.
struct Band {
  int security = 0;
  int hidden = 0;
  // WPS hands out a passphrase: it needs WPA2, alone or beside WPA3.
  [[nodiscard]] bool has_wpa2() const { return security != kSecurityOpen && security != kSecurityWpa3; }
};

bool read_disabled(const char* section, bool& out, const char* what) {
  const std::optional<int> disabled = uci::Section("wireless", section).read_number("disabled", kFlagSize);
  if (!disabled) log_error_as(kWriter, "Failed to get %s disable status", what);
  out = disabled == 1;
  return disabled.has_value();
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

bool set_wps(const char* ifname, wps::Change change, bool is_mirrored) {
  const std::optional<std::string> failed = wps::write(ifname, change, is_mirrored);
  if (failed) log_error_as(kWriter, "Failed to set %s", failed->c_str());
  return !failed;
}

bool switch_off(bool is_mirrored) {
  return std::ranges::all_of(wps::kSsids,
                             [=](const char* ifname) { return set_wps(ifname, wps::Change::kOff, is_mirrored); });
}

bool switch_on(const Bands& bands, bool is_mirrored) {
  if (!permit_wps(bands)) return false;
  for (std::size_t i = 0; i < kBands; ++i) {
    const bool is_permitted = bands[i].has_wpa2() && bands[i].hidden != 1;
    if (is_permitted && !set_wps(wps::kSsids[i], wps::Change::kOn, is_mirrored)) return false;
  }
  return true;
}

}  // namespace

bool can_set_wps_enable(int status) {
  if (status != 1) return true;
  if (has_enabled_band() == false) return false;
  const std::optional<Bands> bands = read_bands();
  return !bands || permit_wps(*bands);
}

int set_wps_enable(int status, int mesh_role) {
  const bool is_mirrored = mesh_role == kMeshRoleController;
  if (status == 1 && !has_enabled_band().value_or(false)) return 1;
  const std::optional<bool> is_filter_on = get_mac_filter_enable();
  if (!is_filter_on) log_error("Failed to get mac filter status return default value");
  if (is_filter_on == true && status == 0) {
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
  const std::optional<int> hidden = uci::Section("wireless", ifname).read_number("hidden", kFlagSize);
  if (!hidden) log_error("Failed to get hiddenEnable option, return default value 0");
  out = hidden == 1 ? 1 : 0;
  return 0;
}

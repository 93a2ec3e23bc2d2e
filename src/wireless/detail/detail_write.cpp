// Writing of the detail settings.
#include "wireless/detail/detail_write.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

#include "domain/interface_plan.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/mesh.h"
#include "unit/operating_mode.h"
#include "wireless.h"
#include "wireless/detail/band_steering.h"
#include "wireless/detail/detail_settings.h"
#include "wireless/detail/detail_tables.h"
#include "wireless/wireless_options.h"
#include "wireless/wps/wps_enable.h"

namespace {

using wlan_detail::Switch;

constexpr const char* kWriter = "set_wlan_detail_info";
constexpr int kShortestBeaconInterval = 100;

// Stops at the first write that fails.
bool set_mirrored(bool is_mirrored, const char* section, const char* option, const std::string& value) {
  return std::ranges::all_of(wireless_sections(is_mirrored, section),
                             [&](const uci::Section& place) { return place.set(option, value); });
}

bool set_beacons(std::span<const char* const> sections, bool is_mirrored, const std::string& interval) {
  for (const char* section : sections) {
    if (set_mirrored(is_mirrored, section, "bintval", interval)) continue;
    log_error_as("set_wlan_beacon_interval", "Failed to set wireless.%s.bintval", section);
    return false;
  }
  return true;
}

bool set_wlan_beacon_interval(int interval, int role, bool is_repeater) {
  const std::string value = std::to_string(std::max(interval, kShortestBeaconInterval));
  const bool is_controller = role == kMeshRoleController;
  if (!set_beacons(kMainSsids, is_controller, value)) return false;
  if (is_repeater) return true;
  if (is_controller) return set_beacons(wlan_detail::kControllerBeacons, true, value);
  return role != kMeshRoleNone || set_beacons(wlan_detail::kRouterBeacons, false, value);
}

bool set_wlan_dtim_period(int period, int role) {
  for (const char* section : kMainSsids) {
    if (set_mirrored(role == kMeshRoleController, section, "dtim_period", std::to_string(period))) continue;
    log_error("Failed to set wireless.%s.dtim_period by uci api", section);
    return false;
  }
  return true;
}

// The first row that cannot be written, or nullptr.
const Switch* write_switches(std::span<const Switch> table, int is_on) {
  const auto failed = std::ranges::find_if_not(table, [is_on](const Switch& row) {
    return uci::Section("wireless", row.section).set(row.option, is_on == 1 ? row.on : "0");
  });
  return failed == table.end() ? nullptr : &*failed;
}

bool set_switches(std::span<const Switch> table, int is_on, platform::LogPlace place = platform::LogPlace::here()) {
  const Switch* failed = write_switches(table, is_on);
  if (failed != nullptr) log_error_at(place, "Failed to set wireless.%s.%s", failed->section, failed->option);
  return failed == nullptr;
}

bool set_wlan_multicast_conversion(int is_on) { return set_switches(wlan_detail::kMulticast, is_on); }

bool set_wlan_beam_forming(std::span<const Switch> table, int is_on) { return set_switches(table, is_on); }

bool set_wlan_mu_mimo(int is_on) {
  if (const Switch* failed = write_switches(wlan_detail::kEhtMuMimo, is_on)) {
    log_error("Failed to set wireless.%s.set_eht_ulmumimo to '%s' by uci api", failed->section,
              is_on == 1 ? failed->on : "0");
    return false;
  }
  return set_switches(wlan_detail::kHeMuMimo, is_on);
}

bool set_wlan_ofdma(int is_on) { return set_switches(wlan_detail::kOfdma, is_on); }

void follow_band_steering(int requested) {
  int current = 0;
  if (get_bandSteering_Value(current) != 0) log_error_as(kWriter, "Failed to get band steering status");
  if (requested != current) set_band_steering_Info(requested);  // its refusal of other values is no failure here
}

// One option of a radio or access point. `name` is how the failure message calls it.
struct RadioOption {
  const char* section;
  const char* option;
  std::string value;
  const char* name;
};

bool set_radio_options(std::span<const RadioOption> options, bool is_mirrored) {
  for (const char* package : wireless_packages(is_mirrored)) {
    for (const RadioOption& row : options) {
      if (uci::Section(package, row.section).set(row.option, row.value)) continue;
      log_error_as(kWriter, "Failed to set %s.%s", package, row.name);
      return false;
    }
  }
  return true;
}

bool set_radios(const WlanDetailInfo& info, bool is_mirrored, bool is_repeater) {
  const char* const htmodes[] = {wlan_detail::htmode_of_width(0, info.band_width_2g),
                                 wlan_detail::htmode_of_width(1, info.band_width_5g),
                                 wlan_detail::htmode_of_width(2, info.band_width_6g)};
  if (std::ranges::find(htmodes, nullptr) != std::end(htmodes)) return false;
  std::vector<RadioOption> options{
      {"wifi0", "htmode", htmodes[0], "wifi0.htmode"},
      {"wifi1", "htmode", htmodes[1], "wifi1.htmode"},
      {"wifi2", "htmode", htmodes[2], "wifi2.htmode"},
      {"ath0", "txpower", std::to_string(info.power_2g), "ath0.txpower"},
      {"ath1", "txpower", std::to_string(info.power_5g), "ath1.txpower"},
      {"ath2", "txpower", std::to_string(info.power_6g), "ath2.txpower"},
  };
  if (!is_repeater) {
    options.push_back(
        {"ath01", "guest_separation", std::to_string(info.guest_ssid_isolation_enable), "ath01.guest_separation "});
  }
  options.push_back({"wifi1", "dfs_puncture_en", std::to_string(info.multi_ru_enable), "wifi1.dfs_puncture_en "});
  return set_radio_options(options, is_mirrored);
}

// The steps of writing, in their order. `name` is how the failure message calls what was to be set.
struct Unit {
  int role;
  bool is_repeater;
};
struct Step {
  bool (*apply)(const WlanDetailInfo&, const Unit&);
  const char* name;
};
using Info = WlanDetailInfo;
// clang-format off
constexpr std::array<Step, 9> kSteps{{
    {[](const Info& info, const Unit&) { return can_set_wps_enable(info.wps_enable); }, "wpsEnable"},
    {[](const Info& info, const Unit& unit) {
       return set_wlan_beacon_interval(info.beacon_interval, unit.role, unit.is_repeater);
     }, "beacon interval"},
    {[](const Info& info, const Unit& unit) { return set_wlan_dtim_period(info.dtim_period, unit.role); }, "DTIM period"},
    {[](const Info& info, const Unit&) {
       return set_wlan_multicast_conversion(info.multicast_conversion_enable);
     }, "multicast conversion"},
    {[](const Info& info, const Unit&) {
       return set_wlan_beam_forming(wlan_detail::kBeamforming5g, info.beamforming_5g_enable);
     }, "beamforming5GEnable"},
    {[](const Info& info, const Unit&) {
       return set_wlan_beam_forming(wlan_detail::kBeamforming6g, info.beamforming_6g_enable);
     }, "beamforming6GEnable"},
    {[](const Info& info, const Unit&) { return set_wlan_mu_mimo(info.mu_mimo_enable); }, "set_eht_ulmumimo"},
    {[](const Info& info, const Unit&) { return set_wlan_ofdma(info.ofdma_enable); }, "set_eht_ulofdma"},
    {[](const Info& info, const Unit& unit) { return set_wps_enable(info.wps_enable, unit.role) == 0; }, "wpsEnable"},
}};
// clang-format on

}  // namespace

int set_wlan_detail_info(const WlanDetailInfo& info) {
  int role = kMeshRoleNone;
  if (get_mesh_role_value(role) != 0) {
    log_error("Failed to get mesh role");
    return 1;
  }
  const std::optional<unit::OperatingMode> mode = unit::operating_mode();
  if (!mode) {
    log_error("Failed to get opmode");
    return 1;
  }
  const Unit unit{role, mode->begins_as_repeater()};
  for (const Step& step : kSteps) {
    if (step.apply(info, unit)) continue;
    log_error("Failed to set %s", step.name);
    return 1;
  }
  follow_band_steering(info.band_steering_enable);
  if (!set_radios(info, role == kMeshRoleController, unit.is_repeater)) return 1;
  os_system("uci commit wireless");
  os_system("uci commit wireless_for_easymesh");
  os_system("/usr/sbin/iptables_guest_isolate.sh &");
  wifi_reload();
  return 0;
}

// Reading of the detail settings.
#include "wireless/detail/detail_read.h"

#include <array>
#include <optional>
#include <string>

#include "domain/interface_plan.h"
#include "platform/log.h"
#include "uci_section.h"
#include "unit/mesh.h"
#include "wireless/detail/band_steering.h"
#include "wireless/detail/detail_settings.h"
#include "wireless/detail/detail_tables.h"
#include "wireless/wps/wps_status.h"

namespace {

constexpr const char* kReader = "get_wlan_detail_info";

constexpr std::size_t kHtmodeSize = 16;
constexpr const char* kBandNames[] = {"2.4G", "5G", "6G"};

std::optional<int> read_number(const char* section, const char* option) {
  return uci::Section("wireless", section).read_number(option);
}

// What one option tells of a setting; without it there is no answer.
struct Source {
  const char* section;
  const char* option;
  int on;  // the number that means 1, any other 0; kAsItIs for a plain number
  int WlanDetailInfo::*field;
  const char* name;  // in the message of a failure
};
constexpr int kAsItIs = -1;
using Info = WlanDetailInfo;
// clang-format off
constexpr std::array<Source, 7> kSources{{
    {"ath0", "bintval",          kAsItIs, &Info::beacon_interval,             "bintval"},
    {"ath0", "dtim_period",      kAsItIs, &Info::dtim_period,                 "dtim_period"},
    {"ath0", "mcastenhance",     5,       &Info::multicast_conversion_enable, "mcastenhance"},
    {"ath1", "set_eht_mu_bfmr",  1,       &Info::beamforming_5g_enable,       "5G set_eht_mu_bfmr"},
    {"ath2", "set_eht_mu_bfmr",  1,       &Info::beamforming_6g_enable,       "6G set_eht_mu_bfmr"},
    {"ath0", "set_eht_ulmumimo", 1,       &Info::mu_mimo_enable,              "set_eht_ulmumimo"},
    {"ath0", "set_eht_ulofdma",  1,       &Info::ofdma_enable,                "set_eht_ulofdma"},
}};
// clang-format on

// False where the option cannot be read.
bool is_on(const char* section, const char* option) { return read_number(section, option) == 1; }

bool is_ieee80211r_on() {
  const std::optional<int> value = unit::easymesh().read_number("ieee80211r");
  if (!value) log_error_as(kReader, "Failed to get ieee80211r value");
  return value == 1;
}

int read_wps() {
  int status = 0;
  if (getWpsStatus(status) == 0) return status;
  log_error_as(kReader, "Failed to get WPS status, return default value");
  return 1;
}

// What a mesh controller decides for its agents.
void set_agent_values(WlanDetailInfo& info) {
  info.beacon_interval = 100;
  info.dtim_period = 1;
  info.multicast_conversion_enable = info.guest_ssid_isolation_enable = 1;
  info.beamforming_5g_enable = info.beamforming_6g_enable = 1;
  info.ieee802dot11r = info.mu_mimo_enable = info.ofdma_enable = 1;
  info.wps_enable = info.band_steering_enable = 1;
}

bool read_own_values(WlanDetailInfo& info) {
  for (const Source& source : kSources) {
    const auto number = read_number(source.section, source.option);
    if (!number) {
      log_error_as(kReader, "Failed to get %s value", source.name);
      return false;
    }
    const int as_switch = *number == source.on ? 1 : 0;
    info.*source.field = source.on == kAsItIs ? *number : as_switch;
  }
  info.guest_ssid_isolation_enable = is_on("ath01", "guest_separation") ? 1 : 0;
  info.ieee802dot11r = is_ieee80211r_on() ? 1 : 0;
  info.wps_enable = read_wps();
  if (get_bandSteering_Value(info.band_steering_enable) == 0) return true;
  log_error_as(kReader, "Failed to get band steering status");
  return false;
}

// A missing power is 100 percent for 6 GHz and a failure for the others: kept as it is.
bool read_powers(WlanDetailInfo& info) {
  int* const powers[] = {&info.power_2g, &info.power_5g, &info.power_6g};
  for (std::size_t band = 0; band < std::size(kBandNames); ++band) {
    const auto tx_power_dbm = read_number(kMainSsids[band], "txpower");
    if (tx_power_dbm) {
      switch_tx_power_to_percent(kBandNames[band], *tx_power_dbm, *powers[band]);
      continue;
    }
    log_error_as(kReader, "Failed to get %s txpower value", kBandNames[band]);
    if (band != 2) return false;
    *powers[band] = 100;
  }
  return true;
}

bool read_widths(WlanDetailInfo& info) {
  int* const widths[] = {&info.band_width_2g, &info.band_width_5g, &info.band_width_6g};
  for (std::size_t band = 0; band < kRadios.size(); ++band) {
    const auto htmode = uci::Section("wireless", kRadios[band].section).read("htmode", kHtmodeSize);
    if (!htmode) {
      log_error_as(kReader, "Failed to get %s htmode value", kBandNames[band]);
      return false;
    }
    const auto width = wlan_detail::width_of_htmode(*htmode);
    if (!width) {
      log_error_as(kReader, "Failed to match %s htmode bandwidth", kBandNames[band]);
      return false;
    }
    *widths[band] = *width;
  }
  return true;
}

}  // namespace

int get_wlan_detail_info(WlanDetailInfo& info) {
  int role = kMeshRoleNone;
  if (get_mesh_role_value(role) != 0) {
    log_error("Failed to get mesh mode");
    return 1;
  }
  if (role == kMeshRoleAgent) {
    set_agent_values(info);
  } else if (!read_own_values(info)) {
    return 1;
  }
  if (!read_powers(info)) return 1;
  info.multi_ru_enable = is_on("wifi1", "dfs_puncture_en") ? 1 : 0;
  return read_widths(info) ? 0 : 1;
}

// Band steering as the detail settings switch it: one name on all bands, whose own settings are kept for later.
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "interface_plan.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_access.h"
#include "wireless.h"
#include "wireless/detail_settings.h"
#include "wireless/detail_tables.h"

namespace {

constexpr std::size_t kValueSize = 256;
constexpr const char* kModel = kMainSsids[0];  // the 2.4 GHz main SSID, which the two others follow
constexpr std::array<const char*, 2> kFollowers{kMainSsids[1], kMainSsids[2]};

void set_lbd(const char* value) {
  UciSetOption(nullptr, "lbd", "config", "Enable", value);
  UciSetOption(nullptr, "lbd", "config", "EnableMulti11kRequest", value);
}

// The SSID is also the name of the MLD that carries the interface.
void set_follower(const char* ifname, std::string_view option, const std::string& value) {
  UciSetOption(nullptr, "wireless", ifname, option.data(), value.c_str());
  if (option != "ssid") return;
  const auto mld = uci_read("wireless", ifname, "mld", kValueSize);
  if (mld) UciSetOption(nullptr, "wireless", mld->c_str(), "mld_ssid", value.c_str());
}

void restore(const char* ifname) {
  for (const char* option : wlan_detail::kSteeredOptions) {
    if (const auto value = uci_read("bandsteering", ifname, option, kValueSize)) {
      set_follower(ifname, option, *value);
    } else {
      log_error("%s doesn't have value: %s !", ifname, option);
    }
  }
}

// An option that the interface does not have must not come back from an earlier saving.
void save(const char* ifname) {
  for (const char* option : wlan_detail::kSteeredOptions) {
    if (const auto value = uci_read("wireless", ifname, option, kValueSize)) {
      UciSetOption(nullptr, "bandsteering", ifname, option, value->c_str());
    } else {
      log_error("%s doesn't have value: %s !", ifname, option);
      UciDelOption(nullptr, "bandsteering", ifname, option);
    }
  }
}

void follow_model() {
  for (const char* option : wlan_detail::kFollowedOptions) {
    const auto value = uci_read("wireless", kModel, option, kValueSize);
    if (!value) {
      log_error("ath0 doesn't have value: %s !", option);
      continue;
    }
    for (const char* ifname : kFollowers) set_follower(ifname, option, *value);
  }
  for (const auto& row : wlan_detail::kSteeredSecurity) {
    UciSetOption(nullptr, "wireless", row.section, row.option, row.on);
  }
  UciDelOption(nullptr, "wireless", kMainSsids[2], "owe");
}

void switch_on() {
  int is_on = 0;
  if (get_bandSteering_Value(is_on) != 0 || is_on == 0) {
    for (const char* ifname : kFollowers) save(ifname);
    set_lbd("1");
  }
  follow_model();
}

void switch_off() {
  set_lbd("0");
  for (const char* ifname : kFollowers) restore(ifname);
}

}  // namespace

int set_band_steering_Info(int enable) {
  if (enable != 0 && enable != 1) {
    log_error("bandSteering data is error");
    return 1;
  }
  enable == 1 ? switch_on() : switch_off();
  os_system("uci commit lbd");
  os_system("uci commit bandsteering");
  return 0;
}

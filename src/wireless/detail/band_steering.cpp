// Band steering as the detail settings switch it: one name on all bands, whose own settings are kept for later.
#include "wireless/detail/band_steering.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "interface_plan.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_access.h"
#include "wireless/detail/detail_tables.h"

namespace {

constexpr const char* kWriter = "set_band_steering_Info";

constexpr std::size_t kNumberSize = 4;
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
      log_error_as(kWriter, "%s doesn't have value: %s !", ifname, option);
    }
  }
}

// What must be there before a name or key is overwritten: where their own are kept, and the switch that tells that they
// are. Without it they could not be given back, or the next request would keep the model's in their place.
struct Place {
  const char* package;
  const char* type;
  const char* section;
};
constexpr std::array<Place, 3> kPlaces{{
    {"bandsteering", "wifi-iface", kFollowers[0]},
    {"bandsteering", "wifi-iface", kFollowers[1]},
    {"lbd", "config", "config"},
}};

bool make_place(const Place& place) {
  if (UciCheckSection(nullptr, place.package, place.section) == 0) return true;
  if (UciCreatSection(nullptr, place.package, place.type, place.section) == 0) return true;
  log_error_as(kWriter, "Failed to create %s.%s", place.package, place.section);
  return false;
}

// An option that the interface does not have must not come back from an earlier saving.
bool save(const char* ifname) {
  for (const char* option : wlan_detail::kSteeredOptions) {
    if (const auto value = uci_read("wireless", ifname, option, kValueSize)) {
      if (UciSetOption(nullptr, "bandsteering", ifname, option, value->c_str()) != 0) return false;
    } else {
      log_error_as(kWriter, "%s doesn't have value: %s !", ifname, option);
      UciDelOption(nullptr, "bandsteering", ifname, option);
    }
  }
  return true;
}

void follow_model() {
  for (const char* option : wlan_detail::kFollowedOptions) {
    const auto value = uci_read("wireless", kModel, option, kValueSize);
    if (!value) {
      log_error_as(kWriter, "ath0 doesn't have value: %s !", option);
      continue;
    }
    for (const char* ifname : kFollowers) set_follower(ifname, option, *value);
  }
  for (const auto& row : wlan_detail::kSteeredSecurity) {
    UciSetOption(nullptr, "wireless", row.section, row.option, row.on);
  }
  UciDelOption(nullptr, "wireless", kMainSsids[2], "owe");
}

bool switch_on() {
  int is_on = 0;
  if (get_bandSteering_Value(is_on) != 0 || is_on == 0) {
    if (!std::ranges::all_of(kPlaces, make_place) || !std::ranges::all_of(kFollowers, save)) return false;
    set_lbd("1");
  }
  follow_model();
  return true;
}

void switch_off() {
  set_lbd("0");
  for (const char* ifname : kFollowers) restore(ifname);
}

}  // namespace

int get_bandSteering_Value(int& out) {
  const std::optional<std::string> enable = uci_read("lbd", "config", "Enable", kNumberSize);
  if (!enable) return 1;
  out = std::atoi(enable->c_str()) == 1 ? 1 : 0;
  return 0;
}

int set_band_steering_Info(int enable) {
  if (enable != 0 && enable != 1) {
    log_error("bandSteering data is error");
    return 1;
  }
  if (enable == 0) {
    switch_off();
  } else if (!switch_on()) {
    return 1;
  }
  os_system("uci commit lbd");
  os_system("uci commit bandsteering");
  return 0;
}

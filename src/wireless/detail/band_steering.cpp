// Band steering as the detail settings switch it: one name on all bands, whose own settings are kept for later.
#include "wireless/detail/band_steering.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "domain/interface_plan.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "wireless/detail/detail_tables.h"

namespace {

constexpr const char* kWriter = "set_band_steering_Info";

constexpr std::size_t kNumberSize = 4;
constexpr std::string_view kSsid = "ssid";
constexpr std::size_t kValueSize = 256;
constexpr const char* kModel = kMainSsids[0];  // the 2.4 GHz main SSID, which the two others follow
constexpr std::array<const char*, 2> kFollowers{kMainSsids[1], kMainSsids[2]};

void set_lbd(const char* value) {
  const uci::Section steering("lbd", "config");
  steering.set("Enable", value);
  steering.set("EnableMulti11kRequest", value);
}

// The SSID is also the name of the MLD that carries the interface.
void set_follower(const char* ifname, const char* option, const std::string& value) {
  const uci::Section follower("wireless", ifname);
  follower.set(option, value);
  if (option != kSsid) return;
  if (const auto mld = follower.read("mld", kValueSize)) uci::Section("wireless", *mld).set("mld_ssid", value);
}

void restore(const char* ifname) {
  const uci::Section kept("bandsteering", ifname);
  for (const char* option : wlan_detail::kSteeredOptions) {
    if (const auto value = kept.read(option, kValueSize)) {
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
  const uci::Section section(place.package, place.section);
  if (section.exists() || section.create(place.type)) return true;
  log_error_as(kWriter, "Failed to create %s.%s", place.package, place.section);
  return false;
}

// An option that the interface does not have must not come back from an earlier saving.
bool save(const char* ifname) {
  const uci::Section follower("wireless", ifname);
  const uci::Section kept("bandsteering", ifname);
  for (const char* option : wlan_detail::kSteeredOptions) {
    if (const auto value = follower.read(option, kValueSize)) {
      if (!kept.set(option, *value)) return false;
    } else {
      log_error_as(kWriter, "%s doesn't have value: %s !", ifname, option);
      kept.remove(option);
    }
  }
  return true;
}

void follow_model() {
  const uci::Section model("wireless", kModel);
  for (const char* option : wlan_detail::kFollowedOptions) {
    const auto value = model.read(option, kValueSize);
    if (!value) {
      log_error_as(kWriter, "ath0 doesn't have value: %s !", option);
      continue;
    }
    for (const char* ifname : kFollowers) set_follower(ifname, option, *value);
  }
  for (const auto& row : wlan_detail::kSteeredSecurity) {
    uci::Section("wireless", row.section).set(row.option, row.on);
  }
  uci::Section("wireless", kMainSsids[2]).remove("owe");
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
  const std::optional<int> enable = uci::Section("lbd", "config").read_number("Enable", kNumberSize);
  if (!enable) return 1;
  out = enable == 1 ? 1 : 0;
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

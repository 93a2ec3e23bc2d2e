// Security, SSID and key of the repeater's access points and stations.
#include "repeater/interface_config.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/log.h"
#include "repeater/uci_commands.h"
#include "uci_section.h"

namespace {

// "%s" of the lists below stands for the interface.
using Commands = std::array<std::string_view, 5>;

constexpr Commands kSetSae{"encryption=ccmp", "sae=1", "force_invalid_group=1", "sae_confirm_immediate=1",
                           "ieee80211w=2"};
// With their values, as `uci` gets them.
constexpr std::array<std::string_view, 4> kDeleteSae{"sae=1", "sae_confirm_immediate=1", "force_invalid_group=1",
                                                     "ieee80211w=2"};

void set_option(std::string_view ifname, std::string_view assignment) {
  uci_command("set " + wireless_option(ifname, assignment));
}

void set_sae(std::string_view ifname) {
  for (const std::string_view assignment : kSetSae) set_option(ifname, assignment);
}

void delete_sae(std::string_view ifname) {
  for (const std::string_view option : kDeleteSae) delete_wireless(ifname, option);
}

void set_wpa2(std::string_view ifname, bool sae_was_on) {
  set_option(ifname, "encryption=psk2+ccmp");
  if (sae_was_on) delete_sae(ifname);
  if (ifname == kBands[k6g].ap) set_sae(ifname);  // no WPA2 on 6 GHz
}

// Enhanced open where 6 GHz forbids an open network.
void set_open(std::string_view ifname, bool sae_was_on) {
  if (ifname == kBands[k6g].station || ifname == kBands[k6g].ap) {
    set_option(ifname, "encryption=ccmp");
    set_option(ifname, "owe=1");
  } else {
    set_option(ifname, "encryption=none");
  }
  if (sae_was_on) delete_sae(ifname);
}

bool reads_one(const char* ifname, const char* option) {
  constexpr std::size_t kSwitchSize = 4;
  return uci::Section("wireless", ifname).read_or(option, kSwitchSize, "") == "1";
}

// A station's key is written only where the access point of its band follows: kept as it is.
void set_keys(std::string_view ifname, const char* key, const FollowFlags& flags) {
  for (std::size_t band = 0; band < kBandCount; ++band) {
    if (flags[band] == 0) continue;
    uci_set_value(wireless_option(kBands[band].ap, "key"), key);
    if (ifname == kBands[band].station) uci_set_value(wireless_option(ifname, "key"), key);
  }
}

void set_station(std::string_view ifname, const char* ssid, int compati_mode) {
  uci_set_value(wireless_option(ifname, "ssid"), ssid);
  set_option(ifname, compati_mode == kStationUsesExtap ? "extap=1" : "wds=1");
  set_option(ifname, "mode=sta");
}

}  // namespace

std::optional<FollowFlags> read_follow_flags(const char* caller) {
  constexpr std::size_t kFlagSize = 4;
  constexpr int kDecimal = 10;
  FollowFlags flags{};
  for (std::size_t band = 0; band < kBandCount; ++band) {
    const std::optional<std::string> value = uci::Section("wireless", kBands[band].ap).read("ssid_change", kFlagSize);
    if (!value) {
      log_error_as(caller, "get %s ssid_change error\n", kBands[band].ap);
      return std::nullopt;
    }
    flags[band] = static_cast<int>(std::strtol(value->c_str(), nullptr, kDecimal));
  }
  return flags;
}

int SetWifiParaByEncrypt(const char* ifname, int encrypt_type) {
  if (ifname == nullptr) {
    log_error("param is null\n");
    return 1;
  }
  const bool sae_was_on = reads_one(ifname, "sae");
  uci_command(std::string("set wireless.") + ifname + "=wifi-iface");
  set_option(ifname, "disabled=0");
  if (encrypt_type == kEncryptWpa2) {
    set_wpa2(ifname, sae_was_on);
  } else if (encrypt_type == kEncryptSae) {
    set_sae(ifname);
    delete_wireless(ifname, "owe=1");
  } else {
    set_open(ifname, sae_was_on);
  }
  log_debug("exit");
  return 0;
}

int SetWifiBasicPara(const char* ifname, const char* ssid, const char* key, const FollowFlags& flags) {
  if (ifname == nullptr || ssid == nullptr) {
    log_error("param is NULL\n");
    return 1;
  }
  const std::string_view name = ifname;
  const auto is_ap = [name](const Band& band) { return name == band.ap; };
  const auto ap = std::find_if(kBands.begin(), kBands.end(), is_ap);
  if (ap != kBands.end() && flags[static_cast<std::size_t>(ap - kBands.begin())] != 0) {
    uci_set_value(wireless_option(ap->ap, "ssid"), ssid);
    uci_set_value(wireless_option(ap->ap_mld, "mld_ssid"), ssid);
  }
  if (key != nullptr) set_keys(name, key, flags);

  const int compati_mode = read_compati_mode(__func__);
  const auto is_station = [name](const Band& band) { return name == band.station; };
  if (std::any_of(kBands.begin(), kBands.end(), is_station)) {
    set_station(name, ssid, compati_mode);
    return 0;
  }
  if (ap != kBands.end()) {
    set_option(name, "mode=ap");
    return 0;
  }
  log_error("invalid iface\n");
  return 1;
}

bool set_security(const char* ifname, int encrypt_type, const char* caller) {
  if (SetWifiParaByEncrypt(ifname, encrypt_type) == 0) return true;
  log_error_as(caller, "%s set enc error\n", ifname);
  return false;
}

bool set_security_of_following_aps(int encrypt_type, const FollowFlags& flags, const char* caller) {
  for (std::size_t band = 0; band < kBandCount; ++band) {
    if (flags[band] != 0 && !set_security(kBands[band].ap, encrypt_type, caller)) return false;
  }
  return true;
}

bool set_ssid_and_key(const char* ifname, const RepeaterConnectInfo& info, const FollowFlags& flags,
                      const char* caller) {
  if (SetWifiBasicPara(ifname, info.ssid.c_str(), info.encrypt_key.c_str(), flags) == 0) return true;
  log_error_as(caller, "set %s ssid key error\n", ifname);
  return false;
}

bool set_ssid_and_key_of_aps(const RepeaterConnectInfo& info, const FollowFlags& flags, const char* caller) {
  return std::ranges::all_of(kBands, [&](const Band& band) { return set_ssid_and_key(band.ap, info, flags, caller); });
}

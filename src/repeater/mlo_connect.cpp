// The uplink over several bands at once.
#include "repeater/mlo_connect.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

#include "platform/log.h"
#include "platform/process.h"
#include "platform/text.h"
#include "repeater/interface_config.h"
#include "repeater/network_config.h"
#include "repeater/uci_commands.h"
#include "uci_section.h"

namespace {

// The messages of the helpers are known by the name of the function that they work for.
constexpr const char* kConnect = "SetWifiConnectInfoByMlo";

// When the 6 GHz station learns that it accepts any security.
enum class SecurityCheckOff { kNever, kLast, kAfterAccessPoints };

// What the variants differ in beyond their bands.
struct MloSteps {
  MloVariant variant;
  const char* function;                         // that the messages are known by
  const char* unused_station;                   // nullptr: all are used
  std::span<const char* const> stale_stations;  // unlinked from an MLD that no variant has set up
  std::span<const char* const> key_options;
  std::array<const char*, kBandCount> ap_disabled;
  SecurityCheckOff security_check_off;
  bool ifname_before_enabling;
};

constexpr std::array<const char*, 2> kStale25{"ath03", "ath13"};
constexpr std::array<const char*, 2> kStale56{"ath23", "ath13"};
constexpr std::array<const char*, 3> kStale256{"ath03", "ath23", "ath13"};
constexpr std::array<const char*, 2> kKeys25{"ath03.key", "ath13.key"};
constexpr std::array<const char*, 2> kKeys56{"ath13.key", "ath23.key"};
constexpr std::array<const char*, 6> kKeys256{"ath13.key",          "ath13.sae_password", "ath23.key",
                                              "ath23.sae_password", "ath03.sae_password", "ath03.key"};

bool set_security_and_ssids(const MloSteps& steps, const RepeaterConnectInfo& info) {
  const char* caller = steps.function;
  const std::optional<FollowFlags> flags = read_follow_flags(caller);
  if (!flags) return false;
  if (!set_security_of_following_aps(info.encrypt_type, *flags, caller)) return false;
  if (!set_ssid_and_key_of_aps(info, *flags, caller)) return false;
  return std::ranges::all_of(steps.variant.bands, [&](std::size_t band) {
    return set_security(kBands[band].station, info.encrypt_type, caller);
  });
}

void unlink_stale_stations(const MloSteps& steps) {
  uci_command("delete wireless.mld7");
  for (const char* station : steps.stale_stations) delete_wireless(station, "mld");
}

void set_station_mld(const MloSteps& steps, const RepeaterConnectInfo& info, const std::string& mld_mac) {
  uci_command(std::string("set repeater.repeater_band.mlo=") + steps.variant.stored);
  uci_command("set wireless.mld7=wifi-mld");
  uci_set_value("wireless.mld7.mld_ssid", info.ssid);
  uci_set_value("wireless.mld7.mld_macaddr", mld_mac);
  for (const std::size_t station : steps.variant.bands) {
    uci_set_value(std::string("wireless.") + kBands[station].station + ".ssid", info.ssid);
  }
  if (info.encrypt_key.empty()) return;
  for (const char* option : steps.key_options) uci_set_value(std::string("wireless.") + option, info.encrypt_key);
}

uci::Section station_of(std::size_t band) { return {"wireless", kBands[band].station}; }

// A write that fails stops nothing: it is told in the log.
void set_station_option(const MloSteps& steps, const char* option, const char* value) {
  for (const std::size_t station : steps.variant.bands) station_of(station).set(option, value);
}

void delete_option_of_all_stations(const char* option) {
  for (std::size_t band = 0; band < kBandCount; ++band) station_of(band).remove(option);
}

void set_bridging(const MloSteps& steps) {
  const int compati_mode = read_compati_mode(steps.function);
  delete_option_of_all_stations("extap");
  delete_option_of_all_stations("wds");
  set_station_option(steps, compati_mode == kStationUsesExtap ? "extap" : "wds", "1");
}

void accept_any_security_on_6g() { station_of(k6g).set("en_6g_sec_comp", "0"); }

void attach_stations(const MloSteps& steps) {
  for (std::size_t band = 0; band < kBandCount; ++band) {
    uci::Section("wireless", kBands[band].ap).set("disabled", steps.ap_disabled[band]);
  }
  if (steps.security_check_off == SecurityCheckOff::kAfterAccessPoints) accept_any_security_on_6g();
  set_station_option(steps, "mld", kStationMld);
  if (steps.ifname_before_enabling) delete_option_of_all_stations("ifname");
  set_station_option(steps, "disabled", "0");
  for (const std::size_t station : steps.variant.bands) {
    station_of(station).set("device", kBands[station].radio);
  }
  if (!steps.ifname_before_enabling) delete_option_of_all_stations("ifname");
  set_station_option(steps, "mode", "sta");
  set_station_option(steps, "network", "lan");
  if (steps.security_check_off == SecurityCheckOff::kLast) accept_any_security_on_6g();
}

bool set_mlo_uplink(const MloSteps& steps, const RepeaterConnectInfo& info, std::string_view previous_mlo,
                    const std::string& mld_mac) {
  if (steps.unused_station != nullptr) uci_command(std::string("delete wireless.") + steps.unused_station);
  if (!set_security_and_ssids(steps, info)) return false;
  if (previous_mlo == "0") unlink_stale_stations(steps);
  set_station_mld(steps, info, mld_mac);
  set_bridging(steps);
  attach_stations(steps);
  uci_commit("wireless", "repeater");
  return true;
}

// The address of br-lan; nullopt (logged) when it has none.
std::optional<std::string> read_bridge_mac() {
  constexpr std::size_t kMacMax = 17;
  const platform::ProcessResult result = platform::run_shell(R"(ifconfig br-lan | grep 'HWaddr' | awk '{print $5}')");
  if (!result.started) {
    log_error_as(kConnect, "popen error\n");
    return std::nullopt;
  }
  if (result.output.empty()) {
    log_error_as(kConnect, "get br_lan mac error\n");
    return std::nullopt;
  }
  return platform::split_lines(result.output, kMacMax + 1).front();
}

struct MloConnect {
  int code;  // of multiLinkOperationEnable
  int (*set_info)(const RepeaterConnectInfo& info, std::string_view previous_mlo, const std::string& mld_mac);
  const char* name;
};
constexpr std::array<MloConnect, kMloVariants.size()> kMloConnects{{
    {kMloVariants[0].code, SetMlo25GInfo, "SetMlo25GInfo"},
    {kMloVariants[1].code, SetMlo56GInfo, "SetMlo56GInfo"},
    {kMloVariants[2].code, SetMlo256GInfo, "SetMlo256GInfo"},
}};

// Nothing happens for a variant that does not exist.
bool set_variant(const RepeaterConnectInfo& info, std::string_view previous_mlo, const std::string& mld_mac) {
  if (info.multi_link_operation_enable == kMloOff) ClearRepeaterMlo();
  const auto* connect = std::ranges::find(kMloConnects, info.multi_link_operation_enable, &MloConnect::code);
  if (connect == kMloConnects.end() || connect->set_info(info, previous_mlo, mld_mac) == 0) return true;
  log_error_as(kConnect, "%s error\n", connect->name);
  return false;
}

}  // namespace

int SetMlo25GInfo(const RepeaterConnectInfo& info, std::string_view previous_mlo, const std::string& mld_mac) {
  const MloSteps steps{.variant = kMloVariants[0],
                       .function = __func__,
                       .unused_station = kBands[k6g].station,
                       .stale_stations = kStale25,
                       .key_options = kKeys25,
                       .ap_disabled = {"0", "0", "1"},
                       .security_check_off = SecurityCheckOff::kNever,
                       .ifname_before_enabling = false};
  return set_mlo_uplink(steps, info, previous_mlo, mld_mac) ? 0 : 1;
}

int SetMlo56GInfo(const RepeaterConnectInfo& info, std::string_view previous_mlo, const std::string& mld_mac) {
  const MloSteps steps{.variant = kMloVariants[1],
                       .function = __func__,
                       .unused_station = kBands[k24g].station,
                       .stale_stations = kStale56,
                       .key_options = kKeys56,
                       .ap_disabled = {"1", "0", "0"},
                       .security_check_off = SecurityCheckOff::kLast,
                       .ifname_before_enabling = false};
  return set_mlo_uplink(steps, info, previous_mlo, mld_mac) ? 0 : 1;
}

int SetMlo256GInfo(const RepeaterConnectInfo& info, std::string_view previous_mlo, const std::string& mld_mac) {
  const MloSteps steps{.variant = kMloVariants[2],
                       .function = __func__,
                       .unused_station = nullptr,
                       .stale_stations = kStale256,
                       .key_options = kKeys256,
                       .ap_disabled = {"0", "0", "0"},
                       .security_check_off = SecurityCheckOff::kAfterAccessPoints,
                       .ifname_before_enabling = true};
  return set_mlo_uplink(steps, info, previous_mlo, mld_mac) ? 0 : 1;
}

void ClearRepeaterMlo() {
  uci_command("delete wireless.mld7");
  for (const Band& band : kBands) delete_wireless(band.station, "mld");
  for (const Band& band : kBands) delete_wireless(band.station, "wds");
  uci_command("set repeater.repeater_band.mlo=0");
  uci_commit("wireless", "repeater");
}

std::string derive_mld_mac(std::string bridge_mac) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  constexpr std::size_t kStep = 2;
  constexpr std::size_t kBase = 10;
  if (bridge_mac.size() < 2) return bridge_mac;
  const auto value_of = [&](char digit) {
    const char upper = digit >= 'a' && digit <= 'f' ? static_cast<char>(digit - 'a' + 'A') : digit;
    return kDigits.find(upper);
  };
  const std::size_t first = value_of(bridge_mac[0]);
  const std::size_t second = value_of(bridge_mac[1]);
  if (first == std::string_view::npos || second == std::string_view::npos) return bridge_mac;

  const std::size_t sum = (second + kStep) % kDigits.size();
  bridge_mac[1] = kDigits[sum % kBase];
  if (sum < kBase) return bridge_mac;
  if (first + 1 == kDigits.size()) return "";
  bridge_mac[0] = kDigits[first + 1];
  return bridge_mac;
}

int SetWifiConnectInfoByMlo(const RepeaterConnectInfo& info) {
  const std::optional<std::string> previous_mlo = read_mlo_variant();
  if (!previous_mlo) {
    log_error("get mlo band error\n");
    return 1;
  }
  const std::optional<std::string> bridge_mac = read_bridge_mac();
  if (!bridge_mac) return 1;
  if (!set_variant(info, *previous_mlo, derive_mld_mac(*bridge_mac))) return 1;
  if (info.multi_link_operation_enable != kMloOff && SetNetworkParamInfoToConnect() != 0) {
    log_error("SetNetworkParamInfoToConnect error\n");
    return 1;
  }
  uci_command("set repeater.repeater_band.status='success'");
  uci_command("set repeater.repeater_band.repeater_select_band='MLO'");
  uci_commit("repeater", "wireless", "network", "dhcp");
  return 0;
}

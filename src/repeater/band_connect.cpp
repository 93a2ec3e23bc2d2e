// The uplink on one band, or on each of the three by itself.
#include "repeater/band_connect.h"

#include <string>

#include "platform/log.h"
#include "repeater/network_config.h"
#include "repeater/uci_commands.h"
#include "uci_section.h"

namespace {

// The messages of the helpers are known by the name of the function that they work for.
constexpr const char* kConnect = "SetWifiConnectInfoByBand";

// How a band is configured, and what it has beyond the others.
struct BandConfig {
  Band band;
  const char* function;                         // that the messages are known by
  const char* extra_radio_command = nullptr;    // nullptr: none
  const char* extra_station_command = nullptr;  // nullptr: none
};

struct BandStep {
  int (*set_config)(const RepeaterConnectInfo& info, const FollowFlags& flags);
  const char* name_in_log;
};
// By frequency, from 1.
constexpr std::array<BandStep, kBandCount> kBandSteps{
    {{SetConfig24G, "24g"}, {SetConfig5G, "5g"}, {SetConfig6G, "6g"}}};

void set_radio(const BandConfig& config) {
  const Band& band = config.band;
  set_wireless(band.radio, "disabled", "0");
  set_wireless(band.radio, "channel", "0");  // automatic
  if (config.extra_radio_command != nullptr) uci_command(config.extra_radio_command);
}

void attach_interfaces(const BandConfig& config) {
  const Band& band = config.band;
  set_wireless(band.ap, "mode", "ap");
  set_wireless(band.ap, "device", band.radio);
  set_wireless(band.station, "device", band.radio);
  set_wireless(band.station, "ifname", band.station);
  set_wireless(band.station, "network", "lan");
  if (config.extra_station_command != nullptr) uci_command(config.extra_station_command);
  uci_command(std::string("set repeater.repeater_band.repeater_select_band=") + band.name);
}

bool set_band_config(const BandConfig& config, const RepeaterConnectInfo& info, const FollowFlags& flags) {
  const char* station = config.band.station;
  set_radio(config);
  if (!set_security_of_following_aps(info.encrypt_type, flags, config.function)) return false;
  if (!set_security(station, info.encrypt_type, config.function)) return false;
  if (!set_ssid_and_key_of_aps(info, flags, config.function)) return false;
  if (!set_ssid_and_key(station, info, flags, config.function)) return false;
  attach_interfaces(config);
  return true;
}

void record_select_band(int frequency) {
  uci_command("set bandsteering.repeater_band.repeater_select_band=" + std::to_string(frequency));
  uci_commit("bandsteering");
}

// A band that fails does not keep the others from being written.
bool set_all_bands(const RepeaterConnectInfo& info, const FollowFlags& flags) {
  bool are_all_set = true;
  for (const BandStep& step : kBandSteps) are_all_set = step.set_config(info, flags) == 0 && are_all_set;
  if (!are_all_set) log_error_as(kConnect, "set wifi param error\n");
  return are_all_set;
}

// False for a failure or an unknown frequency.
bool set_bands_of_frequency(const RepeaterConnectInfo& info, const FollowFlags& flags) {
  if (info.frequency < kFrequencyAllBands || info.frequency > static_cast<int>(kBandCount)) {
    log_error_as(kConnect, "set  wifi frequency param error\n");
    return false;
  }
  record_select_band(info.frequency);
  if (info.frequency == kFrequencyAllBands) return set_all_bands(info, flags);
  const BandStep& step = kBandSteps[static_cast<std::size_t>(info.frequency - 1)];
  if (step.set_config(info, flags) == 0) return true;
  log_error_as(kConnect, "set %s wifi param error\n", step.name_in_log);
  return false;
}

}  // namespace

int SetConfig24G(const RepeaterConnectInfo& info, const FollowFlags& flags) {
  return set_band_config({.band = kBands[k24g], .function = __func__}, info, flags) ? 0 : 1;
}

int SetConfig5G(const RepeaterConnectInfo& info, const FollowFlags& flags) {
  const BandConfig config{
      .band = kBands[k5g], .function = __func__, .extra_radio_command = "set wireless.ath1.cactimeout=0"};
  return set_band_config(config, info, flags) ? 0 : 1;
}

int SetConfig6G(const RepeaterConnectInfo& info, const FollowFlags& flags) {
  const BandConfig config{
      .band = kBands[k6g], .function = __func__, .extra_station_command = "set wireless.ath23.en_6g_sec_comp=0"};
  return set_band_config(config, info, flags) ? 0 : 1;
}

void ClearLastConnect() {
  for (const Band& band : kBands) uci::Section("wireless", band.station).remove();
  uci::Section("wireless", kStationMld).remove();
}

int SetWifiConnectInfoByBand(const RepeaterConnectInfo& info) {
  ClearLastConnect();
  uci_command("set repeater.repeater_band.mlo=0");
  const std::optional<FollowFlags> flags = read_follow_flags(__func__);
  if (!flags) return 1;
  if (!set_bands_of_frequency(info, *flags)) return 1;
  if (SetNetworkParamInfoToConnect() != 0) {
    log_error("SetNetworkParamInfoToConnect error\n");
    return 1;
  }
  uci_command("set repeater.repeater_band.status='success'");
  uci_commit("repeater", "wireless", "network", "dhcp");
  return 0;
}

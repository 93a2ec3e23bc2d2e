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

// What the configuration of one band has beyond the others.
struct BandConfig {
  int (*set_config)(const RepeaterConnectInfo& info, const FollowFlags& flags);
  const char* extra_radio_command;    // nullptr: none
  const char* extra_station_command;  // nullptr: none
  const char* name_in_log;
  const char* function;  // that the messages are known by
};

constexpr std::array<BandConfig, kBandCount> kBandConfigs{{
    {SetConfig24G, nullptr, nullptr, "24g", "SetConfig24G"},
    {SetConfig5G, "set wireless.ath1.cactimeout=0", nullptr, "5g", "SetConfig5G"},
    {SetConfig6G, nullptr, "set wireless.ath23.en_6g_sec_comp=0", "6g", "SetConfig6G"},
}};

void set_option(const char* section, const char* option, const char* value) {
  uci_command(std::string("set wireless.") + section + '.' + option + '=' + value);
}

void set_radio(const Band& band, const BandConfig& config) {
  set_option(band.radio, "disabled", "0");
  set_option(band.radio, "channel", "0");  // automatic
  if (config.extra_radio_command != nullptr) uci_command(config.extra_radio_command);
}

void attach_interfaces(const Band& band, const BandConfig& config) {
  set_option(band.ap, "mode", "ap");
  set_option(band.ap, "device", band.radio);
  set_option(band.station, "device", band.radio);
  set_option(band.station, "ifname", band.station);
  set_option(band.station, "network", "lan");
  if (config.extra_station_command != nullptr) uci_command(config.extra_station_command);
  uci_command(std::string("set repeater.repeater_band.repeater_select_band=") + band.name);
}

int set_band_config(std::size_t index, const RepeaterConnectInfo& info, const FollowFlags& flags) {
  const Band& band = kBands[index];
  const BandConfig& config = kBandConfigs[index];
  set_radio(band, config);
  if (set_security_of_following_aps(info.encrypt_type, flags, config.function) != 0) return 1;
  if (set_security(band.station, info.encrypt_type, config.function) != 0) return 1;
  if (set_ssid_and_key_of_aps(info, flags, config.function) != 0) return 1;
  if (set_ssid_and_key(band.station, info, flags, config.function) != 0) return 1;
  attach_interfaces(band, config);
  return 0;
}

void record_select_band(int frequency) {
  uci_command("set bandsteering.repeater_band.repeater_select_band=" + std::to_string(frequency));
  uci_commit("bandsteering");
}

// 0, or 1 for a failure or an unknown frequency.
int set_bands_of_frequency(const RepeaterConnectInfo& info, const FollowFlags& flags) {
  if (info.frequency == kFrequencyAllBands) {
    record_select_band(info.frequency);
    int result = 0;
    for (const BandConfig& config : kBandConfigs) result |= config.set_config(info, flags);
    if (result != 0) log_error_as(kConnect, "set wifi param error\n");
    return result;
  }
  if (info.frequency < 0 || info.frequency > static_cast<int>(kBandCount)) {
    log_error_as(kConnect, "set  wifi frequency param error\n");
    return 1;
  }
  record_select_band(info.frequency);
  const BandConfig& config = kBandConfigs[static_cast<std::size_t>(info.frequency - 1)];
  if (config.set_config(info, flags) == 0) return 0;
  log_error_as(kConnect, "set %s wifi param error\n", config.name_in_log);
  return 1;
}

}  // namespace

int SetConfig24G(const RepeaterConnectInfo& info, const FollowFlags& flags) {
  return set_band_config(k24g, info, flags);
}
int SetConfig5G(const RepeaterConnectInfo& info, const FollowFlags& flags) { return set_band_config(k5g, info, flags); }
int SetConfig6G(const RepeaterConnectInfo& info, const FollowFlags& flags) { return set_band_config(k6g, info, flags); }

void ClearLastConnect() {
  for (const Band& band : kBands) uci::Section("wireless", band.station).remove();
  uci::Section("wireless", kStationMld).remove();
}

int SetWifiConnectInfoByBand(const RepeaterConnectInfo& info) {
  ClearLastConnect();
  uci_command("set repeater.repeater_band.mlo=0");
  const std::optional<FollowFlags> flags = read_follow_flags(__func__);
  if (!flags) return 1;
  if (set_bands_of_frequency(info, *flags) != 0) return 1;
  if (SetNetworkParamInfoToConnect() != 0) {
    log_error("SetNetworkParamInfoToConnect error\n");
    return 1;
  }
  uci_command("set repeater.repeater_band.status='success'");
  uci_commit("repeater", "wireless", "network", "dhcp");
  return 0;
}

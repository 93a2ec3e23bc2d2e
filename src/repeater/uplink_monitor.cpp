// Watches the uplink of a repeater.
#include "repeater/uplink_monitor.h"

#include <string>

#include "platform/file.h"
#include "platform/log.h"
#include "platform/process.h"
#include "platform/stoppable_thread.h"
#include "platform/text.h"
#include "repeater/bands.h"
#include "repeater/uci_commands.h"
#include "system_helpers.h"
#include "unit/operating_mode.h"

namespace {

constexpr unsigned int kSettleSeconds = 60;  // the uplink comes up after a setting call
constexpr unsigned int kRoundSeconds = 20;
constexpr int kNothingApplied = -1;

// The platform makes this file while it restarts Wi-Fi by itself: its settings are left alone then.
constexpr const char* kReloadMarker = "/tmp/wifireload_restart";

// One for the process. Its end at the end of the process joins the thread.
platform::StoppableThread& monitor() {
  static platform::StoppableThread thread;
  return thread;
}

// What SetRepeaterApState last did; survives the monitor's thread, and only the monitor touches it.
int last_applied_state = kNothingApplied;

void switch_running_aps(const char* verb) {
  for (const Band& band : kBands) {
    os_system(std::string("hostapd_cli -i ") + band.ap_mld + " -p /var/run/hostapd-" + band.radio + ' ' + verb);
  }
}

void store_ap_state(const char* disabled) {
  set_aps_disabled(disabled);
  uci_commit("wireless");
}

}  // namespace

std::optional<bool> read_station_connected(const char* ifname) {
  constexpr std::size_t kStateMax = 15;
  const std::string name = ifname;
  const platform::ProcessResult result = platform::run_shell("wpa_cli -i " + name + " -p /var/run/wpa_supplicant-" +
                                                             name + R"( status | awk -F "=" '/wpa_state/{print $2}')");
  if (!result.started) return std::nullopt;
  const auto lines = platform::split_lines(result.output, kStateMax + 1);
  return !lines.empty() && lines.front().find("COMPLETED") != std::string::npos;
}

int GetStaInterfaceConnectStatus(const char* ifname) {
  const std::optional<bool> connected = read_station_connected(ifname);
  if (!connected) log_error("popen error\n");
  return connected.value_or(false) ? 0 : 1;
}

int GetStaInterfaceMask() {
  int mask = 0;
  for (std::size_t band = 0; band < kBandCount; ++band) {
    if (platform::file_exists((std::string("/sys/class/net/") + kBands[band].station).c_str())) mask |= 1 << band;
  }
  return mask;
}

bool is_uplink_down(bool previous) {
  const auto is_lost = [](const char* station) { return GetStaInterfaceConnectStatus(station) != 0; };
  if (read_mlo_variant() != "0") return is_lost(kStationMld);
  switch (GetStaInterfaceMask()) {
    case 0:
      return true;
    case kMask24g:
      return is_lost(kBands[k24g].station);
    case kMask5g:
      return is_lost(kBands[k5g].station);
    case kMask6g:
      return is_lost(kBands[k6g].station);
    default:
      return previous;
  }
}

void SetRepeaterApState(int down) {
  if (down == last_applied_state) return;
  const bool platform_reloads = platform::file_exists(kReloadMarker);
  switch_running_aps(down == 1 ? "disable" : "enable");
  if (!platform_reloads) {
    store_ap_state(down == 1 ? "1" : "0");
    if (down == 0) {
      os_system("ifconfig br-lan down");
      os_system("ifconfig br-lan up");
    }
  }
  last_applied_state = down;
}

void CheckWifiConnection() {
  log_debug("check wifi connect status");
  read_compati_mode(__func__);  // only told in the log: every mode waits the same time
  monitor().wait_seconds(kSettleSeconds);
  bool is_down = true;
  while (monitor().wait_seconds(kRoundSeconds)) {
    is_down = is_uplink_down(is_down);
    SetRepeaterApState(is_down ? 1 : 0);
  }
}

int CheckWifiConnectStatus() {
  const std::optional<unit::OperatingMode> mode = unit::operating_mode();
  if (!mode) {
    log_error("get opmode error\n");
    return 1;
  }
  if (!mode->is_repeater()) return 0;
  const int error = monitor().start(CheckWifiConnection);
  if (error == 0) return 0;
  log_error("Thread create failed: %d\n", error);
  return 1;
}

bool stop_uplink_monitor() {
  if (!monitor().running()) return false;
  monitor().stop();
  return true;
}

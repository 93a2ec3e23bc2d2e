// The WAN reload: it outlives the request, since the client's own way to the router may go while it runs.
#include "waninfoMethod/wan_reload.h"

#include <cerrno>
#include <cstring>

#include "platform/background.h"
#include "platform/file.h"
#include "platform/log.h"
#include "system_helpers.h"

namespace {

constexpr const char* kStopIpv4 = "/sys/kernel/debug/ecm/front_end_ipv4_stop";
constexpr const char* kStopIpv6 = "/sys/kernel/debug/ecm/front_end_ipv6_stop";
constexpr const char* kDefunctAll = "/sys/kernel/debug/ecm/ecm_db/defunct_all";

void reload_network() {
  platform::sleep_seconds(2);
  os_system("/etc/init.d/network reload");
  os_system("logger -t LAN_INFO 'lan reload completely finished'");
  if (wan::reload_flags.upnpChangePending) {
    platform::sleep_seconds(2);
    os_system("/etc/init.d/miniupnpd reload");
  }
  if (!wan::reload_flags.ecmChangePending) return;
  if (wan::reload_flags.ecmEnableWanted) {
    enable_ecm_acceleration();
  } else {
    disable_ecm_acceleration();
  }
}

}  // namespace

namespace wan {

ReloadFlags reload_flags;

platform::ReadyWork prepare_network_reload() {
  platform::ReadyWork reload = platform::ready_daemon(reload_network);
  if (!reload) log_error_as("safe_execute_network_reload", "Fork failed!");
  return reload;
}

void safe_execute_network_reload(platform::ReadyWork reload) {
  if (!reload) return;
  reload.begin();
  log_debug("Network reload task pushed to daemon safely.");
}

}  // namespace wan

int write_debugfs_node(const char* path, const char* text) {
  const platform::UniqueFd node = platform::open_existing_for_writing(path);
  if (!node.valid()) {
    log_error("Failed to open %s: %s", path, std::strerror(errno));
    return -1;
  }
  if (!platform::write_whole(node.get(), text)) {
    log_error("Failed to write '%s' to %s: %s", text, path, std::strerror(errno));
    return -1;
  }
  return 0;
}

void disable_ecm_acceleration() {
  log_debug("Disabling ECM acceleration via debugfs...");
  write_debugfs_node(kStopIpv4, "1");
  write_debugfs_node(kStopIpv6, "1");
  write_debugfs_node(kDefunctAll, "1");
}

void enable_ecm_acceleration() {
  log_debug("Enabling ECM acceleration via debugfs...");
  write_debugfs_node(kDefunctAll, "0");
  write_debugfs_node(kStopIpv4, "0");
  write_debugfs_node(kStopIpv6, "0");
}

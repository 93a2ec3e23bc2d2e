// The LAN reload: it outlives the request, since the answer has to reach the client before the address changes.
#include <cstdlib>

#include "lan/lan_live.h"
#include "lan/lan_settings.h"
#include "platform/background.h"
#include "platform/file.h"
#include "platform/log.h"
#include "system_helpers.h"

namespace {

constexpr const char* kResolvConfBackup = "/tmp/resolv.conf.auto.bak";

// False when something stays at `path` through which cp would write somewhere else: a link, a folder with one. What is
// not there cp makes anew.
bool make_way_for(const char* path) {
  return platform::is_own_file(path) || platform::remove_file(path) || !platform::file_exists(path);
}

void reload_network() {
  platform::sleep_seconds(2);
  os_system("/etc/init.d/globalip start");
  os_system("/etc/init.d/dnsmasq restart");
  os_system("ubus call network reload");
  platform::sleep_seconds(1);
  os_system("ubus call network.interface.lan up");
  os_system("logger -t LAN_INFO 'lan reload completely finished'");
  os_system("msg_tool -r easymesh_over");
  check_and_restore_dns();
}

}  // namespace

int check_and_restore_dns() {
  if (!platform::read_file(kResolvConf, 1).value_or("").empty()) {
    log_debug("%s has dns，skip check", kResolvConf);
    return 0;
  }
  log_debug("[%s] is null,ready restore", kResolvConf);
  // Anybody can put a link below /tmp: one in the backup's place would publish any file of root's.
  if (!platform::is_own_file(kResolvConfBackup)) {
    log_debug(" [%s] not exist", kResolvConfBackup);
    return 1;
  }
  const bool restored =
      make_way_for(kResolvConf) && os_system(std::string("cp ") + kResolvConfBackup + ' ' + kResolvConf) == 1;
  log_debug("%s", restored ? "DNS restore success" : "DNS restore fail");
  return restored ? 0 : 1;
}

void safe_execute_network_reload() {
  if (platform::start_daemon(reload_network) == platform::DaemonStart::kForkFailed) {
    log_error("Fork failed!\n");
    return;
  }
  log_debug("Network reload task pushed to daemon safely.\n");
}

// Restarting the firewall.
#include "access/firewall.h"

#include "platform/background.h"
#include "platform/log.h"
#include "system_helpers.h"

void exec_securityReload() {
  log_debug("security reload.");
  os_system("/etc/init.d/firewall restart");
}

void restart_firewall() {
  platform::start_detached([] { os_system("/etc/init.d/firewall restart"); });
}

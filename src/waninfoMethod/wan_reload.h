// The reload that follows a WAN request, and the switch of NAT acceleration.
#pragma once

#include "platform/background.h"

namespace wan {

// What the next reload has to do beside the network; each request that is applied sets all three.
struct ReloadFlags {
  bool ecmChangePending = false;
  bool ecmEnableWanted = false;
  bool upnpChangePending = false;
};
extern ReloadFlags reload_flags;

// Makes the daemon that reloads the network, UPnP and NAT acceleration; false when it cannot be made, which is logged.
platform::ReadyWork prepare_network_reload();
// Lets it begin, once the answer is out.
void safe_execute_network_reload(platform::ReadyWork reload);

}  // namespace wan

// Writes `text` to an existing node, at once and without a newline. 0, or -1, which is logged.
int write_debugfs_node(const char* path, const char* text);

// The engine is stopped first and emptied then; it is started in the opposite order. A node that cannot be written does
// not keep the others from it.
void disable_ecm_acceleration();
void enable_ecm_acceleration();

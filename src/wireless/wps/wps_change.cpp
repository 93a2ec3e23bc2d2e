// WPS as the settings of an SSID switch it.
#include "wireless/wps/wps_change.h"

#include <string_view>

#include "access.h"
#include "interface_plan.h"
#include "platform/log.h"
#include "uci_access.h"
#include "unit/mesh.h"

void change_wpsStatus(int wps_state, const char* ifname) {
  if (wps_state == kLeaveWpsAlone) {
    log_error("Should not to change wps status");
    return;
  }
  int mesh = 0;
  if (get_mesh_value(mesh) != 0) {
    log_error("get mesh value error");
    return;
  }
  int mac_filter = 0;
  if (get_mac_filter_enable(mac_filter) != 0) log_error("Failed to get mac filter status return default value");
  if (mac_filter == 1) {
    log_debug("Enable macfilter func, no wps func");
    return;
  }
  const std::string_view name = ifname;
  if (name != kMainSsids[0] && name != kMainSsids[1]) return;
  UciSetOption("/etc/config", "wireless", ifname, "wps_state", wps_state == 0 ? "1" : "2");
  UciSetOption("/etc/config", "wireless", ifname, "wps_pbc", wps_state == 0 ? "0" : "1");
}

// WPS as the settings of an SSID switch it.
#include "wireless/wps/wps_change.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "access.h"
#include "platform/log.h"
#include "unit/mesh.h"
#include "wireless/wps/wps_options.h"

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
  const std::optional<bool> is_filter_on = get_mac_filter_enable();
  if (!is_filter_on) log_error("Failed to get mac filter status return default value");
  if (is_filter_on == true) {
    log_debug("Enable macfilter func, no wps func");
    return;
  }
  const bool has_wps = std::ranges::any_of(wps::kSsids, [=](std::string_view ssid) { return ssid == ifname; });
  if (has_wps) wps::write(ifname, wps_state == 0 ? wps::Change::kOff : wps::Change::kOn);
}

// The reload that detail settings, WPS and MAC filter share.
#include "domain/reload_commands.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "unit/brand.h"
#include "unit/mesh.h"
#include "wireless.h"

int wifi_reload() {
  const int brand = get_brand_index();
  int role = kMeshRoleNone;
  int mode = 0;
  if (get_mesh_role_value(role) != 0) {
    log_error("Failed to get mesh_role");
    return 0;
  }
  if (get_mesh_mode_value(mode) != 0) {
    log_error("Failed to get mesh_mode");
    return 0;
  }
  os_system("uci commit wireless");
  const reload::Command command = reload::wifi_reload_command(brand, role, mode);
  if (!command.is_known) log_error("%s", reload::unsupported(brand, mode).c_str());
  if (!command.text.empty()) os_system(command.text);
  return 0;
}

// Look-up of the MLD that carries an access point in this unit's mesh.
#include "unit/mesh_mld.h"

#include "domain/mesh_mld.h"
#include "platform/log.h"
#include "unit/brand.h"
#include "unit/mesh.h"

namespace {

constexpr const char* kLookUp = "get_mesh_mld_by_ifname";

// Those who read the log know the uneven naming: an unknown role counts as an unknown device where the brand is not
// orvane, and an unknown mode of a joined agent as an unknown role.
void log_unknown(int brand, int role, int mode, int onboarded) {
  const bool has_role = role == kMeshRoleController || role == kMeshRoleAgent;
  const bool is_orvane = brand == kBrandOrvane;
  if (!has_role && !is_orvane) {
    log_error_as(kLookUp, "Unknown device_id: %u", static_cast<unsigned>(brand));
  } else if (!has_role || (!is_orvane && role == kMeshRoleAgent && onboarded != 0)) {
    log_error_as(kLookUp, "Unknown mesh_role: %u", static_cast<unsigned>(role));
  } else {
    log_error_as(kLookUp, "Unknown mesh_mode: %u", static_cast<unsigned>(mode));
  }
}

}  // namespace

const char* get_mesh_mld_by_ifname(const char* ifname) {
  int role = kMeshRoleNone;
  int mode = 0;
  int onboarded = 0;
  if (ifname == nullptr) return nullptr;
  if (get_mesh_role_value(role) != 0) {
    log_error("Failed to get meshRole");
    return nullptr;
  }
  if (get_mesh_mode_value(mode) != 0) {
    log_error("Failed to get mesh_mode");
    return nullptr;
  }
  if (get_agent_onboarding_status(onboarded) != 0) {
    log_error("Failed to get onboarding_status");
    return nullptr;
  }
  const int brand = get_brand_index();
  const mesh_mld::Row* row = mesh_mld::find_row(brand, role, mode, onboarded);
  if (row == nullptr) {
    log_unknown(brand, role, mode, onboarded);
    return nullptr;
  }
  const char* mld = mesh_mld::find_mld(*row, ifname);
  if (mld == nullptr) log_error("No mld found for ifname: %s", ifname);
  return mld;
}

// This unit's part in the mesh, as UCI has it now.
#pragma once

#include <string>

#include "domain/mesh_codes.h"
#include "uci_section.h"

// Each returns 0 on success; on failure non-zero with `out` untouched. They read UCI afresh on every call.

// button_mesh.easymesh.enable: 1 when it is 1, else 0.
int get_mesh_value(int& out);
// button_mesh.easymesh.mode as a number.
int get_mesh_mode_value(int& out);
// The role when mesh is enabled and the role text is known; otherwise success with `out` untouched: preset it with
// kMeshRoleNone.
int get_mesh_role_value(int& out);
// repacd.MAPConfig.OnboardingDone as a number.
int get_agent_onboarding_status(int& out);

namespace unit {

// Where the settings of the mesh stand.
inline uci::Section easymesh() { return {"button_mesh", "easymesh"}; }

// Whether the mesh is on, and this unit its agent: `enable` is the number 1, and the role is all "agent", or a text
// that begins so. What cannot be read counts as no.
bool is_agent_by_whole_role();
bool is_agent_by_role_prefix();

// What the list of clients goes by: there the mesh is on by any number but 0, and a controller need not be in it.
struct MeshPart {
  bool is_on = false;
  std::string role;
  [[nodiscard]] bool is_agent() const { return is_on && role.starts_with("agent"); }
  [[nodiscard]] bool is_controller() const { return role.starts_with("controller"); }
};
MeshPart read_mesh_part();

}  // namespace unit

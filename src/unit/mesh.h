// This unit's part in the mesh, as UCI has it now.
#pragma once

#include "domain/mesh_codes.h"

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

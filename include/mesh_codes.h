// Mesh role and mode of this unit, as the EasyMesh settings store them.
#pragma once

// get_mesh_role_value
inline constexpr int kMeshRoleNone = 0;
inline constexpr int kMeshRoleController = 1;
inline constexpr int kMeshRoleAgent = 2;

// get_mesh_mode_value: the bands of the backhaul
inline constexpr int kMeshMode245And6 = 0;  // 2.4 + 5 + 6 GHz
inline constexpr int kMeshMode24And5 = 1;   // 2.4 + 5 GHz
inline constexpr int kMeshMode5And6 = 2;    // 5 + 6 GHz

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

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

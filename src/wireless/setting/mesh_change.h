// What a "Mesh SSID" element of the wireless settings changes in the mesh.
#pragma once

#include <string>
#include <string_view>

// A sum of these.
inline constexpr int kMeshEnableChanged = 1;
inline constexpr int kMeshModeChanged = 2;
inline constexpr int kMeshPasswordChanged = 4;
int get_mesh_change_flags(int requested_mesh, int requested_mode, const std::string& password);

enum class MeshChange {
  kNone,
  kSwitchedOn,  // the platform's script that makes this unit a controller was started
  kModeOnly,    // only the mode changed: the request is over, and the mesh has to be closed
};
// What apply_mesh_change comes to; nothing is written or started.
MeshChange choose_mesh_change(int requested_mesh, int flags);
MeshChange apply_mesh_change(int requested_mesh, int requested_mode, const std::string& password);
// The mesh mode that a band label stands for; `fallback` for any other text.
int mesh_mode_of_band(std::string_view band, int fallback);

// The commands that bring the wireless stack up again after a change.
#pragma once

#include <array>
#include <string>

#include "domain/brands.h"
#include "domain/mesh_codes.h"

namespace reload {

inline constexpr int kAnyMode = -1;

// `command` ends in " &": what it is joined to runs in the background as a whole.
struct MeshRow {
  int brand;
  int role;
  int mode;
  const char* command;
};

// clang-format off
// wifi_reload, by brand, role and mesh mode.
inline constexpr std::array<MeshRow, 10> kWifiReload{{
    {kBrandOrvane, kMeshRoleController, 1, "wifi multi_up mld2 mld3 mld6 &"},
    {kBrandOrvane, kMeshRoleController, 2, "wifi multi_up mld0 mld1 mld6 &"},
    {kBrandTesmir, kMeshRoleController, 0, "wifi multi_up mld2 mld5 mld6 mld11 mld12 &"},
    {kBrandTesmir, kMeshRoleController, 1, "wifi multi_up mld0 mld2 mld4 mld10 mld11 &"},
    {kBrandTesmir, kMeshRoleController, 2, "wifi multi_up mld0 mld2 mld5 mld10 mld11 &"},
    {kBrandOrvane, kMeshRoleAgent,      1, "wifi multi_up mld4 mld5 &"},
    {kBrandOrvane, kMeshRoleAgent,      2, "wifi multi_up mld2 mld3 &"},
    {kBrandTesmir, kMeshRoleAgent,      0, "wifi multi_up mld5 mld8 mld9 &"},
    {kBrandTesmir, kMeshRoleAgent,      1, "wifi multi_up mld4 mld6 mld7 &"},
    {kBrandTesmir, kMeshRoleAgent,      2, "wifi multi_up mld3 mld4 mld7 &"},
}};

// The reload chain of the wireless settings, by brand and mesh mode.
inline constexpr std::array<MeshRow, 4> kChainBringUp{{
    {kBrandOrvane, kMeshRoleController, kAnyMode, "wifi multi_up mld1 mld2 mld4 mld5 mld6 &"},
    {kBrandTesmir, kMeshRoleController, 0, "wifi multi_up mld1 mld2 mld3 mld5 mld7 mld9 mld11 &"},
    {kBrandTesmir, kMeshRoleController, 1, "wifi multi_up mld1 mld2 mld3 mld4 mld6 mld8 mld10 &"},
    {kBrandTesmir, kMeshRoleController, 2, "wifi multi_up mld1 mld2 mld3 mld5 mld6 mld8 mld10 &"},
}};
// clang-format on

inline constexpr const char* kPlain = "wifi reload &";
inline constexpr const char* kChainHead =
    "/etc/init.d/repacd update_bss_config && /etc/init.d/wsplcd restart_after_config_change && sleep 30 && ";

// What is run; nothing where the text is empty. A combination that is not known is told in the log, by `unsupported`.
struct Command {
  std::string text;
  bool is_known = true;
};
Command wifi_reload_command(int brand, int role, int mode);
// The whole chain.
Command chain_command(int brand, int mode);
std::string unsupported(int brand, int mode);

}  // namespace reload

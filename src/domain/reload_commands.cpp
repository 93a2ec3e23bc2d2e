// Choice of the command that brings the wireless stack up.
#include "domain/reload_commands.h"

#include <algorithm>

namespace reload {

Command wifi_reload_command(int brand, int role, int mode) {
  if (role != kMeshRoleController && role != kMeshRoleAgent) return {kPlain};
  const auto* row = std::ranges::find_if(
      kWifiReload, [=](const MeshRow& r) { return r.brand == brand && r.role == role && r.mode == mode; });
  if (row != kWifiReload.end()) return {std::string("wifi reload && ") + row->command};
  // A tesmir controller alone is reloaded in a mode that it does not know.
  return {brand == kBrandTesmir && role == kMeshRoleController ? kPlain : "", false};
}

Command chain_command(int brand, int mode) {
  const auto* row = std::ranges::find_if(
      kChainBringUp, [=](const MeshRow& r) { return r.brand == brand && (r.mode == kAnyMode || r.mode == mode); });
  if (row != kChainBringUp.end()) return {std::string(kChainHead) + row->command};
  return {"", false};
}

std::string unsupported(int brand, int mode) {
  const brands::Brand& row = brands::of_index(brand);
  if (!brands::is_known(row)) return "Not supported device_id(" + std::to_string(brand) + ")";
  return "Not supported meshMode(" + std::to_string(mode) + ") for " + row.log_name + " device";
}

}  // namespace reload

// Choice of the command that brings the wireless stack up.
#include "domain/reload_commands.h"

#include <algorithm>

#include "platform/log.h"

namespace reload {
namespace {

// `caller`: the function that the messages are known by.
void log_unsupported(const char* caller, int brand, int mode) {
  if (const brands::Brand& row = brands::of_index(brand); brands::is_known(row)) {
    log_error_as(caller, "Not supported meshMode(%d) for %s device", mode, row.log_name);
  } else {
    log_error_as(caller, "Not supported device_id(%d)", brand);
  }
}

}  // namespace

std::string wifi_reload_command(int brand, int role, int mode) {
  if (role != kMeshRoleController && role != kMeshRoleAgent) return kPlain;
  const auto* row = std::ranges::find_if(
      kWifiReload, [=](const MeshRow& r) { return r.brand == brand && r.role == role && r.mode == mode; });
  if (row != kWifiReload.end()) return std::string("wifi reload && ") + row->command;
  log_unsupported("wifi_reload", brand, mode);
  // A tesmir controller alone is reloaded in a mode that it does not know.
  return brand == kBrandTesmir && role == kMeshRoleController ? kPlain : "";
}

std::string chain_command(int brand, int mode) {
  const auto* row = std::ranges::find_if(
      kChainBringUp, [=](const MeshRow& r) { return r.brand == brand && (r.mode == kAnyMode || r.mode == mode); });
  if (row != kChainBringUp.end()) return std::string(kChainHead) + row->command;
  log_unsupported("handle_wireless_setting", brand, mode);
  return "";
}

}  // namespace reload

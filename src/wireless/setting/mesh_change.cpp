// What a "Mesh SSID" element of the wireless settings changes in the mesh.
#include "wireless/setting/mesh_change.h"

#include <array>
#include <string>
#include <string_view>

#include "domain/interface_plan.h"
#include "domain/mesh_codes.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/mesh.h"
#include "wireless/setting/ssid_info.h"

namespace {

constexpr std::size_t kNumberSize = 8;

struct ModeOfBand {
  std::string_view band;
  int mode;
};
constexpr std::array<ModeOfBand, 3> kModes{{
    {"2.4GHz,5GHz", kMeshMode24And5},
    {"5GHz,6GHz", kMeshMode5And6},
    {"2.4GHz,5GHz,6GHz", kMeshMode245And6},
}};

int read_mesh_number(const char* option) { return unit::easymesh().read_number(option, kNumberSize).value_or(0); }

void set_backhaul_key(const std::string& password) {
  for (const char* package : {"repacd", "repacd_org"}) uci::Section(package, "MAPConfig").set("BackhaulKey", password);
  for (const char* ifname : kBackhaulSsids) uci::Section("wireless", ifname).set("key", password);
}

}  // namespace

int mesh_mode_of_band(std::string_view band, int fallback) {
  for (const ModeOfBand& row : kModes) {
    if (row.band == band) return row.mode;
  }
  return fallback;
}

int get_mesh_change_flags(int requested_mesh, int requested_mode, const std::string& password) {
  int flags = 0;
  if (read_mesh_number("enable") != requested_mesh) flags += kMeshEnableChanged;
  if (read_mesh_number("mode") != requested_mode) flags += kMeshModeChanged;
  const uci::Section backhaul("repacd", "MAPConfig");
  if (backhaul.read_or("BackhaulKey", kPasswordSize, "") != password) flags += kMeshPasswordChanged;
  return flags;
}

MeshChange choose_mesh_change(int requested_mesh, int flags) {
  if (requested_mesh != 1) return MeshChange::kNone;
  if ((flags & kMeshEnableChanged) != 0) return MeshChange::kSwitchedOn;
  return (flags & kMeshModeChanged) != 0 ? MeshChange::kModeOnly : MeshChange::kNone;
}

MeshChange apply_mesh_change(int requested_mesh, int requested_mode, const std::string& password) {
  const int flags = get_mesh_change_flags(requested_mesh, requested_mode, password);
  if (flags == 0) return MeshChange::kNone;
  unit::easymesh().set("mode", std::to_string(requested_mode));
  if ((flags & kMeshPasswordChanged) != 0) set_backhaul_key(password);
  const MeshChange change = choose_mesh_change(requested_mesh, flags);
  if (change == MeshChange::kModeOnly) unit::easymesh().set("mode_change", "1");
  if (change == MeshChange::kSwitchedOn) os_system("/usr/sbin/easymesh_controller.sh &");
  return change;
}

// POST /api/v1/wireless/setting.
#include <optional>
#include <string>

#include "answer/answer.h"
#include "domain/reload_commands.h"
#include "handlers.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/brand.h"
#include "unit/mesh.h"
#include "wireless/channel/channel_write.h"
#include "wireless/setting/mesh_change.h"
#include "wireless/setting/mlo_write.h"
#include "wireless/setting/setting_request.h"
#include "wireless/setting/ssid_info.h"
#include "wireless/setting/ssid_write.h"

namespace {

using answers::Outcome;
using answers::Result;

constexpr const char* kHandler = "handle_wireless_setting";
constexpr const char* kCloseMesh = "/usr/sbin/easymesh_close_for_controller.sh &";

constexpr std::size_t kNumberSize = 8;

enum class Verdict {
  kApplied,
  kUnusable,  // result 1
  kFailed,    // result 2
  kEnded,     // the mesh change ends the request: nothing more is committed or reloaded
};

// What becomes of a request.
struct Change {
  const brands::Brand* brand = &brands::of_index(kBrandOther);
  int mesh_before = 0;  // as UCI had it; a repeater has no mesh switch
  int mesh_mode = 0;    // from the last known band label
  bool is_mesh_switched_on = false;
};

const char* text_or_null(const std::optional<std::string>& text) { return text ? text->c_str() : nullptr; }

Verdict set_mlo(const SettingRequest& request, const WirelessIfaceInfo& info) {
  int mesh = 0;  // a repeater's MLO network counts as outside a mesh
  if (!request.is_repeater && get_mesh_value(mesh) != 0) {
    log_error_as(kHandler, "Failed to get meshRole");
    return Verdict::kFailed;
  }
  if (set_mlo_info(request.mlo, info, mesh) == 0) return Verdict::kApplied;
  log_error_as(kHandler, "Failed to set Wifimlo");
  return Verdict::kFailed;
}

Verdict set_mesh(const SettingRequest& request, const SlotRequest& slot, Change& change) {
  change.mesh_mode = mesh_mode_of_band(slot.band, change.mesh_mode);
  switch (apply_mesh_change(request.mesh, change.mesh_mode, slot.info.password)) {
    case MeshChange::kModeOnly:
      return Verdict::kEnded;
    case MeshChange::kSwitchedOn:
      change.is_mesh_switched_on = true;
      break;
    case MeshChange::kNone:
      break;
  }
  return Verdict::kApplied;
}

Verdict set_access_point(const SettingRequest& request, const SlotRequest& slot) {
  if (set_wireless_info(request.is_repeater ? 1 : 0, text_or_null(slot.name), slot.info) == 0) return Verdict::kApplied;
  if (!request.is_repeater) log_error_as(kHandler, "Failed to set wireless info");
  return Verdict::kFailed;
}

Verdict set_slot(const SettingRequest& request, const SlotRequest& slot, Change& change) {
  switch (kind_of_slot(request, slot, *change.brand)) {
    case SlotKind::kMesh:
      return set_mesh(request, slot, change);
    case SlotKind::kMlo:
      return set_mlo(request, slot.info);
    case SlotKind::kAccessPoint:
      break;
  }
  return set_access_point(request, slot);
}

// Everything that is written before the answer is chosen.
Verdict apply_setting(const SettingRequest& request, Change& change) {
  if (!can_set_slots(request, *change.brand)) return Verdict::kFailed;
  const uci::Section easymesh = unit::easymesh();
  if (!request.is_repeater) {
    change.mesh_before = easymesh.read_number("enable", kNumberSize).value_or(0);
  }
  easymesh.set("ieee80211r", request.ieee802dot11r == 1 ? "1" : "0");
  if (set_channel_Value(request.channels[0], request.channels[1], request.channels[2]) != 0) {
    log_error_as(kHandler, "Failed to set channel2G, channel5G, channel6G");
    return Verdict::kUnusable;
  }
  for (const SlotRequest& slot : request.slots) {
    const Verdict verdict = set_slot(request, slot, change);
    if (verdict != Verdict::kApplied) return verdict;
  }
  os_system("uci commit wireless");
  os_system("uci commit wireless_for_easymesh");
  return Verdict::kApplied;
}

// The mesh stays on: its daemons are told, and its MLDs brought up by the mode that UCI has now.
Outcome run_reload_chain(int brand) {
  int mode = -1;
  if (get_mesh_mode_value(mode) != 0) log_error_as(kHandler, "Failed to get mesh_mode");
  const reload::Command chain = reload::chain_command(brand, mode);
  if (!chain.is_known) log_error_as(kHandler, "%s", reload::unsupported(brand, mode).c_str());
  if (chain.text.empty()) return answers::refused(Result::kFailed);
  os_system(chain.text);
  return answers::accepted(answers::wireless_wait(100));
}

// Starts what makes the change take effect before the answer, and tells what is answered and started then.
Outcome start_reload(const SettingRequest& request, const Change& change) {
  if (change.mesh_before == 1 && request.mesh == 0) return answers::accepted(answers::wireless_wait(180), kCloseMesh);
  if (change.mesh_before == 1 && request.mesh == 1) return run_reload_chain(brands::index_of(*change.brand));
  if (change.is_mesh_switched_on) {
    return answers::accepted(answers::text_of(answers::kWirelessWaits, change.brand->waits_s.mesh_start));
  }
  if (request.is_repeater) {
    log_debug_as(
        kHandler,
        "opmode is repaeter,no need to wifi reload ,just return success. because detail_setting will handle it.\n");
    return answers::accepted(answers::wireless_wait(20));
  }
  os_system("wifi reload &");
  return answers::accepted(answers::wireless_wait(70));
}

Outcome outcome_of(Verdict verdict, const SettingRequest& request, const Change& change) {
  switch (verdict) {
    case Verdict::kApplied:
      return start_reload(request, change);
    case Verdict::kUnusable:
      return answers::refused(Result::kUnusable);
    case Verdict::kFailed:
      return answers::refused(Result::kFailed);
    case Verdict::kEnded:
      break;
  }
  return answers::accepted(answers::wireless_wait(230), kCloseMesh);
}

}  // namespace

int handle_wireless_setting(FCGX_Request* request, const char* body) {
  Change change;
  change.brand = &unit::brand();
  const std::optional<SettingRequest> wanted = read_setting_request(body);
  const Verdict verdict = wanted ? apply_setting(*wanted, change) : Verdict::kUnusable;
  const Outcome outcome = outcome_of(verdict, wanted.value_or(SettingRequest()), change);
  if (verdict != Verdict::kEnded) os_system("/usr/sbin/iptables_guest_isolate.sh &");
  answer(request, outcome);
  return outcome.result == Result::kOk ? 0 : 1;
}

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
#include "wireless/answers.h"
#include "wireless/channel/channel_write.h"
#include "wireless/setting/mesh_change.h"
#include "wireless/setting/mlo_write.h"
#include "wireless/setting/setting_request.h"
#include "wireless/setting/ssid_info.h"
#include "wireless/setting/ssid_write.h"

namespace {

constexpr const char* kHandler = "handle_wireless_setting";

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
  int mesh_before = 0;        // as UCI had it; a repeater has no mesh switch
  int mesh_mode = 0;          // from the last known band label
  std::string_view answer{};  // chosen by a mesh change
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
      change.answer = change.brand == &brands::of_index(kBrandOrvane) ? kWirelessOkWait150 : kWirelessOkWait220;
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
  if (check_slots(request, *change.brand) != 0) return Verdict::kFailed;
  const uci::Section easymesh("button_mesh", "easymesh");
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
std::string_view run_reload_chain(int brand) {
  int mode = -1;
  if (get_mesh_mode_value(mode) != 0) log_error_as(kHandler, "Failed to get mesh_mode");
  const std::string chain = reload::chain_command(brand, mode);
  if (chain.empty()) return kResultFailed;
  os_system(chain);
  return kWirelessOkWait100;
}

// Starts what makes the change take effect, and tells the answer for it.
std::string_view start_reload(const SettingRequest& request, const Change& change) {
  if (change.mesh_before == 1 && request.mesh == 0) return kWirelessOkWait180;
  if (change.mesh_before == 1 && request.mesh == 1) return run_reload_chain(brands::index_of(*change.brand));
  if (!change.answer.empty()) return change.answer;
  if (request.is_repeater) {
    log_debug_as(
        kHandler,
        "opmode is repaeter,no need to wifi reload ,just return success. because detail_setting will handle it.\n");
    return kWirelessOkWait20;
  }
  os_system("wifi reload &");
  return kWirelessOkWait70;
}

constexpr const char* kCloseMesh = "/usr/sbin/easymesh_close_for_controller.sh &";

}  // namespace

int handle_wireless_setting(FCGX_Request* request, const char* body) {
  Change change;
  change.brand = &unit::brand();
  const std::optional<SettingRequest> wanted = read_setting_request(body);
  const Verdict verdict = wanted ? apply_setting(*wanted, change) : Verdict::kUnusable;
  if (verdict == Verdict::kEnded) {
    answer(request, kWirelessOkWait230);
    os_system(kCloseMesh);
    return 0;
  }
  std::string_view text = verdict == Verdict::kUnusable ? kResultUnusable : kResultFailed;
  if (verdict == Verdict::kApplied) text = start_reload(*wanted, change);
  os_system("/usr/sbin/iptables_guest_isolate.sh &");
  answer(request, text);
  if (text == kWirelessOkWait180) os_system(kCloseMesh);
  return text == kResultUnusable || text == kResultFailed ? 1 : 0;
}

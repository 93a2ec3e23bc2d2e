// GET /api/v1/wireless/setting.
#include "wireless/setting/setting_read.h"

#include <array>
#include <optional>
#include <string>
#include <utility>

#include "answer/answer.h"
#include "domain/channels.h"
#include "domain/interface_plan.h"
#include "handlers.h"
#include "platform/log.h"
#include "platform/process.h"
#include "uci_section.h"
#include "unit/mesh.h"
#include "unit/operating_mode.h"
#include "wireless/channel/channel_readers.h"
#include "wireless/detail/band_steering.h"
#include "wireless/setting/mlo_mesh_readers.h"
#include "wireless/setting/ssid_info.h"
#include "wireless/setting/ssid_readers.h"

namespace {

constexpr const char* kHandler = "handle_get_wireless_setting";

constexpr const char* kChannels = "get_channel_value";

constexpr std::size_t kTextSize = 8;
constexpr int kNotApplicable = 9;  // copySsid and guestSsid of slots that have none

struct BandChannel {
  const char* key;
  const char* uplink_command;  // "channel width" of the band's MLD, as `iw` tells
};
constexpr std::array<BandChannel, 3> kBandChannels{{
    {"set2GChannel", R"(iw dev mld1 info | awk '/channel/{print $2" "$6}' )"},
    {"set5GChannel", R"(iw dev mld2 info | awk '/channel/{print $2" "$6}' )"},
    {"set6GChannel", R"(iw dev mld3 info | awk '/channel/{print $2" "$6}' )"},
}};

bool is_connected_repeater(const unit::OperatingMode& mode, int mesh_enabled, const std::string& status) {
  return mode.is_repeater() && mesh_enabled == 0 && status == "success";
}

// What the three MLDs say, or nullopt when a command could not be started.
std::optional<std::array<std::string, 3>> ask_mlds() {
  std::array<std::string, 3> outputs;
  for (std::size_t band = 0; band < outputs.size(); ++band) {
    platform::ProcessResult result = platform::run_shell(kBandChannels[band].uplink_command);
    if (!result.started) {
      log_error_as(kChannels, "popen error");
      return std::nullopt;
    }
    outputs[band] = std::move(result.output);
  }
  return outputs;
}

// The slot's record; false when the slot is left out of the answer.
bool read_slot(SsidSlot& slot, WirelessIfaceInfo& info, int mlo, int mesh) {
  const std::string_view name = slot.ssid_name;
  if (name.starts_with(kMloSlotName)) {
    if (get_mlo_info(slot, info, mlo) == 0) return true;
    log_error_as(kHandler, "Failed to handle MLO SSID, continue next");
  } else if (name.starts_with(kMeshSlotName)) {
    if (get_mesh_info(slot, info, mesh) == 0) return true;
    log_error_as(kHandler, "Failed to get mesh info, continue next");
  } else {
    if (get_wireless_info(slot, info) == 0) return true;
    log_error_as(kHandler, "Failed to get wireless info for %s, continue next", slot.ifname);
  }
  return false;
}

// Each band's slots of a router are main, guest and copy SSID.
void add_copy_and_guest(json::ObjectText& object, const SsidSlot& slot, std::size_t index, bool is_repeater,
                        int status) {
  int copy = kNotApplicable;
  int guest = kNotApplicable;
  const bool is_band_slot = !is_repeater && slot.ifname != nullptr;
  if (is_band_slot && index % 3 == 2 && get_copySsid_enable(slot.ifname, copy) != 0) copy = kNotApplicable;
  if (is_band_slot && index % 3 == 1) guest = status;
  object.add("copySsid", copy);
  object.add("guestSsid", guest);
}

json::ListText read_slots(const unit::OperatingMode& mode, int mlo, int mesh) {
  json::ListText list;
  const std::span<const SsidSlot> slots = ssid_slots(mode.text());
  for (std::size_t index = 0; index < slots.size(); ++index) {
    SsidSlot slot = slots[index];
    WirelessIfaceInfo info;
    if (!read_slot(slot, info, mlo, mesh)) continue;
    json::ObjectText object;
    add_wireless_config_fields(object, slot, info);
    add_copy_and_guest(object, slot, index, mode.is_repeater(), info.ssid_status);
    list.add(std::move(object));
  }
  return list;
}

// "mlo", "mesh" and "bandSteering"; false after a failure that leaves nothing to show.
bool add_switches(json::ObjectText& root, int& mlo, int& mesh) {
  if (get_mlo_value(mlo) != 0) log_error_as(kHandler, "Failed to get MLO");
  root.add("mlo", mlo);
  if (get_mesh_value(mesh) != 0) {
    log_error_as(kHandler, "Failed to get mesh");
    return false;
  }
  root.add("mesh", mesh);
  int band_steering = 0;
  if (get_bandSteering_Value(band_steering) != 0) {
    log_error_as(kHandler, "Failed to get bandSteering");
    return false;
  }
  root.add("bandSteering", band_steering);
  return true;
}

// The whole document, or nullopt after a failure that leaves nothing to show.
std::optional<json::ObjectText> read_wireless_setting() {
  json::ObjectText root = json::success_text();
  int mlo = 0;
  int mesh = 0;
  if (!add_switches(root, mlo, mesh)) return std::nullopt;
  const std::optional<unit::OperatingMode> mode = unit::operating_mode();
  if (!mode) {
    log_error_as(kHandler, "Failed to get opmode");
    return std::nullopt;
  }
  const auto ieee80211r = unit::easymesh().read_number("ieee80211r", kTextSize);
  if (!ieee80211r) log_error_as(kHandler, "Failed to get 80211r");
  root.add("ieee802dot11r", ieee80211r.value_or(0));
  if (get_channel_value(root, *mode, mesh) != 0) {
    log_error_as(kHandler, "Failed to get channel");
    return std::nullopt;
  }
  root.add("wirelessConfig", read_slots(*mode, mlo, mesh));
  return root;
}

}  // namespace

int get_channel_value(json::ObjectText& root, const unit::OperatingMode& mode, int mesh_enabled) {
  const auto status = uci::Section("repeater", "repeater_band").read("status", kTextSize);
  if (!status) log_error("get repeater result error(if not repeater mode, ignore this error)");
  std::optional<std::array<std::string, 3>> mlds;
  const bool is_connected = is_connected_repeater(mode, mesh_enabled, status.value_or(""));
  if (is_connected && !(mlds = ask_mlds())) return 1;

  for (std::size_t band = 0; band < kBandChannels.size(); ++band) {
    int channel = 0;
    if (get_channel_info(static_cast<int>(band), channel) != 0) {
      log_error("Failed to get channel info for index %d", static_cast<int>(band));
      return 1;
    }
    int width_code = 0;
    if (mlds && channel != channels::kRadioOff && get_flashchannel_info((*mlds)[band], channel, width_code) != 0) {
      log_error("get flashchannel info error!");
    }
    root.add(kBandChannels[band].key, channel);
  }
  return 0;
}

int handle_get_wireless_setting(FCGX_Request* request) {
  std::optional<json::ObjectText> root = read_wireless_setting();
  if (!root) {
    answer_plain(request, answers::kUnusable);
    return 1;
  }
  return answer(request, std::move(*root));
}

// Reading and checking of a POST /api/v1/wireless/setting, before the first write.
#include "wireless/setting/setting_request.h"

#include <array>

#include "answer/json_reading.h"
#include "answer/read_object.h"
#include "domain/interface_plan.h"
#include "platform/log.h"
#include "platform/text.h"
#include "system_helpers.h"
#include "unit/mesh.h"
#include "unit/operating_mode.h"
#include "wireless/channel/channel_write.h"
#include "wireless/setting/mesh_change.h"
#include "wireless/setting/mlo_mesh_readers.h"
#include "wireless/setting/mlo_write.h"
#include "wireless/setting/ssid_info.h"
#include "wireless/setting/ssid_write.h"

namespace {

constexpr const char* kHandler = "handle_wireless_setting";

constexpr BodyMessages kBodyMessages{.no_json = "Can't parse request_body to json format.",
                                     .no_object = "Failed to parse wirelessConfig"};

int rekey_interval(int seconds) {
  constexpr int kMin = 600;
  constexpr int kMax = 86400;
  constexpr int kDefault = 1800;
  return seconds < kMin || seconds > kMax ? kDefault : seconds;
}

void read_info(const json::Object& element, WirelessIfaceInfo& info) {
  if (const auto ssid = element.text("ssidValue")) info.ssid = platform::cut_utf8(*ssid, kSsidMax);
  info.ssid_status = element.number("ssidStatus").value_or(info.ssid_status);
  if (const auto key = element.text("ssidPassword")) info.password = platform::cut_utf8(*key, kPasswordMax);
  info.wifi_security = element.number("wifiSecurity").value_or(info.wifi_security);
  info.wifi_stealth = element.number("wifiStealth").value_or(info.wifi_stealth);
  if (const auto seconds = element.number("wpaRekeyInterval")) info.wpa_rekey_interval = rekey_interval(*seconds);
}

bool read_slots(const json::List& elements, std::vector<SlotRequest>& slots) {
  WirelessIfaceInfo info;
  for (const json::Object element : elements) {
    read_info(element, info);
    if (!platform::is_storable(info.ssid) || !platform::is_storable(info.password)) {
      log_error_as(kHandler, "ssidValue or ssidPassword holds control characters");
      return false;
    }
    slots.push_back({element.text("ssidName"), element.text("band").value_or(""), info});
  }
  return true;
}

// A channel's key, and how the messages call it.
struct ChannelKey {
  const char* key;
  const char* name;
};
constexpr std::array<ChannelKey, kRadios.size()> kChannelKeys{
    {{"set2GChannel", "channel2G"}, {"set5GChannel", "channel5G"}, {"set6GChannel", "channel6G"}}};

bool read_channels(const json::Object& asked, Channels& channels) {
  for (std::size_t band = 0; band < channels.size(); ++band) {
    const std::optional<int> channel = asked.number(kChannelKeys[band].key);
    if (!channel) {
      log_error_as(kHandler, "Failed to parse %s", kChannelKeys[band].name);
      return false;
    }
    channels[band] = *channel;
  }
  int role = kMeshRoleNone;
  if (get_mesh_role_value(role) != 0) {
    log_error_as("set_channel_Value", "get_mesh_role_value failed");
  } else if (are_permitted(channels)) {
    return true;
  }
  log_error_as(kHandler, "Failed to set channel2G, channel5G, channel6G");
  return false;
}

// "mesh", which a repeater has no use for, and "mlo".
bool read_switches(const json::Object& asked, SettingRequest& request) {
  const std::optional<int> mesh = request.is_repeater ? 0 : asked.number("mesh");
  if (!mesh) {
    log_error_as(kHandler, "Failed to parse mesh");
    return false;
  }
  const std::optional<int> mlo = asked.number("mlo");
  if (!mlo) {
    log_error_as(kHandler, "Failed to parse mlo");
    return false;
  }
  request.mesh = *mesh;
  request.mlo = *mlo;
  return true;
}

// The members beside the slots.
bool read_members(const json::Object& asked, SettingRequest& request) {
  const std::optional<unit::OperatingMode> mode = unit::operating_mode();
  if (!mode) {
    log_error_as(kHandler, "Failed to get opmode");
    return false;
  }
  request.is_repeater = mode->is_repeater();
  if (!asked.has("bandSteering")) {
    log_error_as(kHandler, "Failed to parse bandSteering");
    return false;
  }
  const std::optional<int> ieee802dot11r = asked.number("ieee802dot11r");
  if (!ieee802dot11r) log_error_as(kHandler, "Failed to parse ieee802dot11r");
  request.ieee802dot11r = ieee802dot11r.value_or(0);
  return read_channels(asked, request.channels) && read_switches(asked, request);
}

// In a mesh without MLO its slot shows the backhaul. Sent back as it was shown, it asks for no MLO network.
bool is_backhaul_sent_back(const WirelessIfaceInfo& info, const brands::Brand& brand) {
  int mesh = 0;
  if (brand.mlo_in_mesh != brands::MloInMesh::kNone || get_mesh_value(mesh) != 0 || mesh != 1) return false;
  SsidSlot slot = *find_wireless_config(1, kMeshSlotName);
  WirelessIfaceInfo shown;
  return get_mesh_info(slot, shown, mesh) == 0 && shown.ssid == info.ssid && shown.password == info.password;
}

bool can_set_mlo(const SettingRequest& request, const SlotRequest& slot) {
  int mesh = 0;
  if (!request.is_repeater && get_mesh_value(mesh) != 0) {
    log_error_as(kHandler, "Failed to get meshRole");
    return false;
  }
  if (can_set_mlo_info(request.mlo, slot.info, mesh)) return true;
  log_error_as(kHandler, "Failed to set Wifimlo");
  return false;
}

bool can_set_access_point(const SettingRequest& request, const SlotRequest& slot, BandSteeringTemplate& model) {
  const char* name = slot.name ? slot.name->c_str() : nullptr;
  if (can_set_wireless_info(request.is_repeater ? 1 : 0, name, slot.info, model)) return true;
  if (!request.is_repeater) log_error_as(kHandler, "Failed to set wireless info");
  return false;
}

// Whether the change of the mesh that the slot asks for ends the request.
bool ends_request(const SettingRequest& request, const SlotRequest& slot, int& mesh_mode) {
  mesh_mode = mesh_mode_of_band(slot.band, mesh_mode);
  const int flags = get_mesh_change_flags(request.mesh, mesh_mode, slot.info.password);
  return choose_mesh_change(request.mesh, flags) == MeshChange::kModeOnly;
}

}  // namespace

std::optional<SettingRequest> read_setting_request(const char* body) {
  const json::Document document = parse_object(body, kBodyMessages, platform::LogPlace::here(kHandler));
  if (!document) return std::nullopt;
  const json::List elements = document->list("wirelessConfig");
  if (!elements || !elements.holds_objects_alone()) {
    log_error_as(kHandler, "Failed to parse wirelessConfig");
    return std::nullopt;
  }
  SettingRequest request;
  if (!read_members(document.root(), request) || !read_slots(elements, request.slots)) return std::nullopt;
  return request;
}

SlotKind kind_of_slot(const SettingRequest& request, const SlotRequest& slot, const brands::Brand& brand) {
  if (!request.is_repeater && slot.name == kMeshSlotName) return SlotKind::kMesh;
  if (request.mlo == 0 || slot.name != kMloSlotName) return SlotKind::kAccessPoint;
  if (request.is_repeater && is_backhaul_sent_back(slot.info, brand)) return SlotKind::kAccessPoint;
  return SlotKind::kMlo;
}

bool can_set_slots(const SettingRequest& request, const brands::Brand& brand) {
  BandSteeringTemplate model = band_steering_template();
  int mesh_mode = 0;
  for (const SlotRequest& slot : request.slots) {
    switch (kind_of_slot(request, slot, brand)) {
      case SlotKind::kMesh:
        if (ends_request(request, slot, mesh_mode)) return true;
        break;
      case SlotKind::kMlo:
        if (!can_set_mlo(request, slot)) return false;
        break;
      case SlotKind::kAccessPoint:
        if (!can_set_access_point(request, slot, model)) return false;
        break;
    }
  }
  return true;
}

// POST /api/v1/wireless/setting.
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>

#include "answer/answer.h"
#include "domain/reload_commands.h"
#include "handlers.h"
#include "mesh_codes.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_access.h"
#include "wireless/answers.h"
#include "wireless/setting_write.h"

namespace {

enum class Verdict {
  kApplied,
  kUnusable,  // result 1
  kFailed,    // result 2
  kEnded,     // the mesh change ends the request: nothing more is committed or reloaded
};

// What a request asks for, and what became of it so far.
struct Change {
  int brand = kBrandOther;
  bool is_repeater = false;
  int mlo = 0;
  int mesh = 0;               // requested
  int mesh_before = 0;        // as UCI had it
  int mesh_mode = 0;          // from the last known band label
  std::string_view answer{};  // chosen by a mesh change
};

// An element's members into `info`; a member that it omits keeps the value of the element before.
void parse_element(json_object* element, WirelessIfaceInfo& info) {
  constexpr int kRekeyMin = 600;
  constexpr int kRekeyMax = 86400;
  constexpr int kRekeyDefault = 1800;
  if (const auto ssid = json::text_member(element, "ssidValue")) info.ssid = ssid->substr(0, kSsidSize - 1);
  info.ssid_status = json::int_member(element, "ssidStatus").value_or(info.ssid_status);
  if (const auto key = json::text_member(element, "ssidPassword")) info.password = key->substr(0, kPasswordSize - 1);
  info.wifi_security = json::int_member(element, "wifiSecurity").value_or(info.wifi_security);
  info.wifi_stealth = json::int_member(element, "wifiStealth").value_or(info.wifi_stealth);
  if (const auto rekey = json::int_member(element, "wpaRekeyInterval")) {
    info.wpa_rekey_interval = *rekey < kRekeyMin || *rekey > kRekeyMax ? kRekeyDefault : *rekey;
  }
}

// UCI keeps no control characters but tab, line feed and carriage return: such a text would be lost without a word.
bool is_storable(std::string_view text) {
  return std::ranges::none_of(text, [](unsigned char c) { return c < 0x20 && c != '\t' && c != '\n' && c != '\r'; });
}

const char* text_or_null(const std::optional<std::string>& text) { return text ? text->c_str() : nullptr; }

// The array of slots; nullptr unless it is one and holds objects alone.
json_object* read_elements(json_object* json) {
  json_object* elements = json::array_member(json, "wirelessConfig");
  for (std::size_t i = 0; elements != nullptr && i < json_object_array_length(elements); ++i) {
    if (!json_object_is_type(json_object_array_get_idx(elements, i), json_type_object)) elements = nullptr;
  }
  return elements;
}

Verdict set_80211r_and_channels(json_object* json) {
  const auto ieee80211r = json::int_member(json, "ieee802dot11r");
  if (!ieee80211r) log_error("Failed to parse ieee802dot11r");
  UciSetOption(nullptr, "button_mesh", "easymesh", "ieee80211r", ieee80211r == 1 ? "1" : "0");

  const auto channel_2g = json::int_member(json, "set2GChannel");
  const auto channel_5g = json::int_member(json, "set5GChannel");
  const auto channel_6g = json::int_member(json, "set6GChannel");
  if (!channel_2g) {
    log_error("Failed to parse channel2G");
  } else if (!channel_5g) {
    log_error("Failed to parse channel5G");
  } else if (!channel_6g) {
    log_error("Failed to parse channel6G");
  } else if (set_channel_Value(*channel_2g, *channel_5g, *channel_6g) != 0) {
    log_error("Failed to set channel2G, channel5G, channel6G");
  } else {
    return Verdict::kApplied;
  }
  return Verdict::kUnusable;
}

Verdict set_mlo(const Change& change, const WirelessIfaceInfo& info, int mesh_enabled) {
  if (set_mlo_info(change.mlo, info, mesh_enabled) == 0) return Verdict::kApplied;
  log_error("Failed to set Wifimlo");
  return Verdict::kFailed;
}

// In an orvane mesh the MLO slot shows the backhaul. Sent back as it was shown, it asks for no MLO network.
bool is_backhaul_sent_back(const WirelessIfaceInfo& info, int brand) {
  int mesh = 0;
  if (brand != kBrandOrvane || get_mesh_value(mesh) != 0 || mesh != 1) return false;
  SsidSlot slot = *find_wireless_config(1, kMeshSlotName);
  WirelessIfaceInfo shown;
  return get_mesh_info(slot, shown, mesh) == 0 && shown.ssid == info.ssid && shown.password == info.password;
}

Verdict set_repeater_element(json_object* element, const WirelessIfaceInfo& info, Change& change) {
  const auto name = json::text_member(element, "ssidName");
  if (set_wireless_info(1, text_or_null(name), info) != 0) return Verdict::kFailed;
  if (change.mlo == 0 || name != kMloSlotName || is_backhaul_sent_back(info, change.brand)) return Verdict::kApplied;
  return set_mlo(change, info, 0);
}

Verdict set_mesh_element(json_object* element, const WirelessIfaceInfo& info, Change& change) {
  change.mesh_mode = mesh_mode_of_band(json::text_member(element, "band").value_or(""), change.mesh_mode);
  switch (apply_mesh_change(change.mesh, change.mesh_mode, info.password)) {
    case MeshChange::kModeOnly:
      return Verdict::kEnded;
    case MeshChange::kSwitchedOn:
      change.answer = change.brand == kBrandOrvane ? kWirelessOkWait150 : kWirelessOkWait220;
      break;
    case MeshChange::kNone:
      break;
  }
  return Verdict::kApplied;
}

Verdict set_router_element(json_object* element, const WirelessIfaceInfo& info, Change& change) {
  const auto name = json::text_member(element, "ssidName");
  if (name == kMeshSlotName) return set_mesh_element(element, info, change);
  if (name == kMloSlotName && change.mlo != 0) {
    int mesh = 0;
    if (get_mesh_value(mesh) == 0) return set_mlo(change, info, mesh);
    log_error("Failed to get meshRole");
    return Verdict::kFailed;
  }
  if (set_wireless_info(0, text_or_null(name), info) == 0) return Verdict::kApplied;
  log_error("Failed to set wireless info");
  return Verdict::kFailed;
}

// "mesh" and "mlo"; a repeater has no mesh switch.
Verdict read_switches(json_object* json, Change& change) {
  if (!change.is_repeater) {
    const auto mesh = json::int_member(json, "mesh");
    if (!mesh) {
      log_error("Failed to parse mesh");
      return Verdict::kUnusable;
    }
    change.mesh = *mesh;
    change.mesh_before = std::atoi(uci_read_or("button_mesh", "easymesh", "enable", 8, "0").c_str());
  }
  const auto mlo = json::int_member(json, "mlo");
  if (!mlo) {
    log_error("Failed to parse mlo");
    return Verdict::kUnusable;
  }
  change.mlo = *mlo;
  return Verdict::kApplied;
}

Verdict set_elements(json_object* elements, Change& change) {
  WirelessIfaceInfo info;
  for (std::size_t i = 0; i < json_object_array_length(elements); ++i) {
    json_object* element = json_object_array_get_idx(elements, i);
    parse_element(element, info);
    if (!is_storable(info.ssid) || !is_storable(info.password)) {
      log_error("ssidValue or ssidPassword holds control characters");
      return Verdict::kFailed;
    }
    const Verdict verdict =
        change.is_repeater ? set_repeater_element(element, info, change) : set_router_element(element, info, change);
    if (verdict != Verdict::kApplied) return verdict;
  }
  return Verdict::kApplied;
}

// Everything that is written before the answer is chosen.
Verdict apply_setting(const char* body, Change& change) {
  if (body == nullptr) return Verdict::kUnusable;
  const json::JsonPtr json = json::parse_object(body);
  if (json == nullptr) {
    log_error("Can't parse request_body to json format.");
    return Verdict::kUnusable;
  }
  json_object* elements = read_elements(json.get());
  if (elements == nullptr) {
    log_error("Failed to parse wirelessConfig");
    return Verdict::kUnusable;
  }
  const auto op_mode = uci_read("system", "@system[0]", "op_mode", 16);
  if (!op_mode) {
    log_error("Failed to get opmode");
    return Verdict::kUnusable;
  }
  if (!json::has_member(json.get(), "bandSteering")) {
    log_error("Failed to parse bandSteering");
    return Verdict::kUnusable;
  }
  change.is_repeater = *op_mode == "re";
  Verdict verdict = set_80211r_and_channels(json.get());
  if (verdict == Verdict::kApplied) verdict = read_switches(json.get(), change);
  if (verdict == Verdict::kApplied) verdict = set_elements(elements, change);
  if (verdict != Verdict::kApplied) return verdict;
  os_system("uci commit wireless");
  os_system("uci commit wireless_for_easymesh");
  return Verdict::kApplied;
}

// The mesh stays on: its daemons are told, and its MLDs brought up by the mode that UCI has now.
std::string_view run_reload_chain(int brand) {
  int mode = -1;
  if (get_mesh_mode_value(mode) != 0) log_error("Failed to get mesh_mode");
  const std::string chain = reload::chain_command(brand, mode);
  if (chain.empty()) return kResultFailed;
  os_system(chain);
  return kWirelessOkWait100;
}

// Starts what makes the change take effect, and tells the answer for it.
std::string_view start_reload(const Change& change) {
  if (change.mesh_before == 1 && change.mesh == 0) return kWirelessOkWait180;
  if (change.mesh_before == 1 && change.mesh == 1) return run_reload_chain(change.brand);
  if (!change.answer.empty()) return change.answer;
  if (change.is_repeater) {
    log_debug(
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
  change.brand = get_brand_index();
  const Verdict verdict = apply_setting(body, change);
  if (verdict == Verdict::kEnded) {
    answer(request, kWirelessOkWait230);
    os_system(kCloseMesh);
    return 0;
  }
  std::string_view text = verdict == Verdict::kUnusable ? kResultUnusable : kResultFailed;
  if (verdict == Verdict::kApplied) text = start_reload(change);
  os_system("/usr/sbin/iptables_guest_isolate.sh &");
  answer(request, text);
  if (text == kWirelessOkWait180) os_system(kCloseMesh);
  return text == kResultUnusable || text == kResultFailed ? 1 : 0;
}

// The request of a mesh agent's set-up screens, and what it comes to.
#include "wireless/agent/agent_settings.h"

#include <array>

#include "domain/mesh_codes.h"
#include "platform/log.h"
#include "platform/text.h"

namespace {

constexpr const char* kHandler = "handle_agent_wifi_client_info";

// One key: either a number or the text.
struct Key {
  const char* name;
  int AgentSettings::*number;
  const char* missing;
};
using Settings = AgentSettings;
// clang-format off
constexpr std::array<Key, 10> kKeys{{
    {"mesh",                     &Settings::mesh,                        "parse mesh error"},
    {"frequency",                &Settings::frequency,                   "parse frequency error"},
    {"multiLinkOperationEnable", &Settings::multi_link_operation_enable, "parse multiLinkOperationEnable error"},
    {"ieee802dot11r",            &Settings::ieee802dot11r,               "parse ieee802dot11r error"},
    {"multiRuEnable",            &Settings::multi_ru_enable,             "parse multiRuEnable error"},
    {"location",                 &Settings::location,                    "parse Location error"},
    {"locationCustom",           nullptr,                                "parse locationCustom error"},
    {"ledStatus",                &Settings::led_status,                  "parse ledStatus error"},
    {"compatiMode",              &Settings::compati_mode,                "parse compatiMode error"},
    {"compatiWiFi6Mode",         &Settings::compati_wifi6_mode,          "parse compatiWiFi6Mode error"},
}};
// clang-format on

// The mode that a unit in a mesh works in. What was asked for stays stored beside it while the mesh is left as it is.
int mode_in_force(int stored_mode, int compati_wifi6_mode) {
  return compati_wifi6_mode == 1 ? kMeshMode24And5 : stored_mode;
}

// False for a member that is missing, or a text that UCI cannot hold.
bool read_member(const json::Object& asked, const Key& key, AgentSettings& settings) {
  if (key.number != nullptr) {
    const std::optional<int> number = asked.number(key.name);
    if (number) settings.*key.number = *number;
    return number.has_value();
  }
  const std::optional<std::string> text = asked.text(key.name);
  if (text) settings.location_custom = platform::cut_utf8(*text, kLocationCustomMax);
  return text && platform::is_storable(settings.location_custom);
}

}  // namespace

std::optional<AgentSettings> parse_agent_settings(const json::Object& asked) {
  AgentSettings settings;
  for (const Key& key : kKeys) {
    if (read_member(asked, key, settings)) continue;
    log_error_as(kHandler, "%s", key.missing);
    return std::nullopt;
  }
  return settings;
}

bool is_mesh_mode(int mode) { return mode == kMeshMode245And6 || mode == kMeshMode24And5 || mode == kMeshMode5And6; }

AgentAction choose_agent_action(const AgentSettings& settings, const AgentState& before) {
  if (settings.mesh == 0 && before.mesh == 1) return AgentAction::kMeshOff;
  if (settings.mesh == 1 && before.mesh == 0) return AgentAction::kMeshOn;
  const int mode =
      is_mesh_mode(settings.multi_link_operation_enable) ? settings.multi_link_operation_enable : before.mesh_mode;
  const bool is_other_mode =
      mode_in_force(mode, settings.compati_wifi6_mode) != mode_in_force(before.mesh_mode, before.compati_wifi6_mode);
  const bool is_other_compatibility = settings.compati_wifi6_mode != before.compati_wifi6_mode;
  if (settings.mesh == 1 && (is_other_mode || is_other_compatibility)) return AgentAction::kMeshChange;
  return settings.multi_ru_enable != before.multi_ru ? AgentAction::kReload : AgentAction::kNothing;
}

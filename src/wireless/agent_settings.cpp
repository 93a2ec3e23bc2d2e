// The request of a mesh agent's set-up screens, and what it comes to.
#include "wireless/agent_settings.h"

#include <array>

#include "answer/json.h"
#include "mesh_codes.h"
#include "platform/log.h"

namespace {

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

bool is_continuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

}  // namespace

std::optional<AgentSettings> parse_agent_settings(json_object* json) {
  AgentSettings settings;
  for (const Key& key : kKeys) {
    const auto number = key.number != nullptr ? json::int_member(json, key.name) : std::nullopt;
    const auto text = key.number == nullptr ? json::text_member(json, key.name) : std::nullopt;
    if (!number && !text) {
      log_error("%s", key.missing);
      return std::nullopt;
    }
    if (number) settings.*key.number = *number;
    if (text) settings.location_custom = cut_location(*text);
  }
  return settings;
}

std::string cut_location(std::string_view text) {
  if (text.size() <= kLocationCustomMax) return std::string(text);
  constexpr std::size_t kLongestCharacter = 4;
  std::size_t size = kLocationCustomMax;
  while (size > 0 && kLocationCustomMax - size < kLongestCharacter && is_continuation(text[size])) --size;
  return std::string(text.substr(0, is_continuation(text[size]) ? kLocationCustomMax : size));
}

AgentAction choose_agent_action(const AgentSettings& settings, const AgentState& before) {
  if (settings.mesh == 0 && before.mesh == 1) return AgentAction::kMeshOff;
  if (settings.mesh == 1 && before.mesh == 0) return AgentAction::kMeshOn;
  const int mode = settings.multi_link_operation_enable;
  const bool is_mode = mode == kMeshMode245And6 || mode == kMeshMode24And5 || mode == kMeshMode5And6;
  const bool is_other_mode = is_mode && mode != before.mesh_mode;
  const bool is_other_compatibility = settings.compati_wifi6_mode != before.compati_wifi6_mode;
  if (settings.mesh == 1 && (is_other_mode || is_other_compatibility)) return AgentAction::kMeshChange;
  return settings.multi_ru_enable != before.multi_ru ? AgentAction::kReload : AgentAction::kNothing;
}

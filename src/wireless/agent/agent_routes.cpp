// POST /api/v1/mesh/agent-wificlient-info.
#include <array>
#include <optional>
#include <string>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "answer/read_object.h"
#include "handlers.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/brand.h"
#include "unit/mesh.h"
#include "wireless/agent/agent_settings.h"
#include "wireless/wireless_options.h"

namespace {

using answers::Outcome;
using answers::Result;

constexpr const char* kHandler = "handle_agent_wifi_client_info";

constexpr BodyMessages kBodyMessages{
    .no_content = "request error", .no_json = "can't parse data to json format.", .no_object = "parse mesh error"};

constexpr const char* kCloseMesh = "/usr/sbin/easymesh_close_for_agent.sh &";
constexpr std::array<const char*, 2> k6GhzNetworks{"ath2", "ath25"};

// A plain option, in the order of writing.
struct Row {
  const char* package;
  const char* section;
  const char* option;
  std::string (*value)(const AgentSettings&);
  const char* failure;
  int AgentState::*before = nullptr;  // what stands in its place is read first, where that counts
  const char* unreadable = nullptr;
};
using Settings = AgentSettings;
// clang-format off
constexpr std::array<Row, 6> kRows{{
    {"button_mesh", "easymesh", "ieee80211r",
     [](const Settings& s) { return std::to_string(s.ieee802dot11r); }, "set ieee80211r error"},
    {"wireless", "wifi1", "dfs_puncture_en",
     [](const Settings& s) { return std::to_string(s.multi_ru_enable); }, "set MRU error",
     &AgentState::multi_ru, "get multiRuEnable value error"},
    {"devicecustom", "info", "locationCustom",
     [](const Settings& s) { return std::to_string(s.location); }, "set location error"},
    {"devicecustom", "info", "locationCustom",
     [](const Settings& s) { return s.location_custom; }, "set locationCustom error"},
    {"repeater", "compatiMode", "value",
     [](const Settings& s) { return std::to_string(s.compati_mode); }, "set compatiMode value error"},
    {"button_mesh", "easymesh", "compatiWiFi6Mode",
     [](const Settings& s) { return std::to_string(s.compati_wifi6_mode); }, "set compatiWiFi6Mode value error",
     &AgentState::compati_wifi6_mode, "get compatiWiFi6Mode value error"},
}};
// clang-format on

bool write_settings(const AgentSettings& settings, AgentState& before) {
  for (const Row& row : kRows) {
    const uci::Section section(row.package, row.section);
    if (row.before != nullptr) {
      const std::optional<int> number = section.read_number(row.option);
      if (!number) {
        log_error_as(kHandler, "%s", row.unreadable);
        return false;
      }
      before.*row.before = *number;
    }
    if (section.set(row.option, row.value(settings))) continue;
    log_error_as(kHandler, "%s", row.failure);
    return false;
  }
  return true;
}

bool write_mesh_mode(const AgentSettings& settings, AgentState& before) {
  if (get_mesh_mode_value(before.mesh_mode) != 0) {
    log_error_as(kHandler, "get mesh mode value error");
    return false;
  }
  const int mode = settings.multi_link_operation_enable;
  if (!is_mesh_mode(mode) || unit::easymesh().set("mode", std::to_string(mode))) return true;
  log_error_as(kHandler, "set mesh mode value error");
  return false;
}

// With Wi-Fi 6 compatibility the unit falls back to 2.4 + 5 GHz.
bool switch_6ghz(const AgentSettings& settings) {
  const bool is_off = settings.compati_wifi6_mode == 1;
  if (is_off && !unit::easymesh().set("mode", "1")) {
    log_error_as(kHandler, "set mesh mode value error");
    return false;
  }
  for (const char* package : kWirelessPackages) {
    for (const char* name : k6GhzNetworks) {
      if (uci::Section(package, name).set("disabled", is_off ? "1" : "0")) continue;
      log_error_as(kHandler, "set 6GHz disabled error");
      return false;
    }
  }
  return true;
}

Outcome join_mesh() {
  os_system("/usr/sbin/easymesh_agent.sh &");
  return answers::accepted(answers::text_of(answers::kWirelessWaits, unit::brand().waits_s.mesh_join));
}

Outcome change_mesh() {
  if (!unit::easymesh().set("mode_change", "1")) {
    log_error_as(kHandler, "set mode_change error");
    return answers::refused(Result::kFailed);
  }
  return answers::accepted(answers::wireless_wait(150), kCloseMesh);
}

// The client hears of it before the unit leaves its mesh.
Outcome act(AgentAction action, const AgentSettings& settings) {
  if (action == AgentAction::kNothing) return answers::accepted(answers::wait(20));
  if (action == AgentAction::kReload) {
    os_system("wifi reload &");
    return answers::accepted(answers::wireless_wait(120));
  }
  if (!switch_6ghz(settings)) return answers::refused(Result::kFailed);
  if (action == AgentAction::kMeshOff) return answers::accepted(answers::wireless_wait(120), kCloseMesh);
  return action == AgentAction::kMeshOn ? join_mesh() : change_mesh();
}

}  // namespace

int handle_agent_wifi_client_info(FCGX_Request* request, const char* body) {
  const json::Document document = read_object(request, body, kBodyMessages);
  if (!document) return 0;
  const std::optional<AgentSettings> settings = parse_agent_settings(document.root());
  if (!settings) return answer(request, answers::kUnusable);
  AgentState before;
  if (!write_settings(*settings, before) || !write_mesh_mode(*settings, before))
    return answer(request, answers::kFailed);
  if (get_mesh_value(before.mesh) != 0) {
    log_error("get mesh value error");
    return answer(request, answers::kFailed);
  }
  return answer(request, act(choose_agent_action(*settings, before), *settings));
}

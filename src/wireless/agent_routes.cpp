// POST /api/v1/mesh/agent-wificlient-info.
#include <array>
#include <cstdlib>
#include <optional>
#include <string>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "handlers.h"
#include "mesh_codes.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_access.h"
#include "wireless/agent_settings.h"
#include "wireless/wireless_options.h"

namespace {

constexpr const char* kConfdir = "/etc/config";
constexpr std::size_t kNumberSize = 16;
constexpr const char* kCloseMesh = "/usr/sbin/easymesh_close_for_agent.sh &";
constexpr std::array<const char*, 2> k6GhzNetworks{"ath2", "ath25"};

// Failures end in a log line, for `&&` chains.
bool set(const char* package, const char* section, const char* option, const std::string& value, const char* failure) {
  if (UciSetOption(kConfdir, package, section, option, value.c_str()) == 0) return true;
  log_error("%s", failure);
  return false;
}

bool read(const char* package, const char* section, const char* option, int& out, const char* failure) {
  const auto text = uci_read(package, section, option, kNumberSize);
  if (!text) {
    log_error("%s", failure);
    return false;
  }
  out = std::atoi(text->c_str());
  return true;
}

// The plain options; what stood in their place goes to `before`.
bool write_settings(const AgentSettings& settings, AgentState& before) {
  return set("button_mesh", "easymesh", "ieee80211r", std::to_string(settings.ieee802dot11r), "set ieee80211r error") &&
         read("wireless", "wifi1", "dfs_puncture_en", before.multi_ru, "get multiRuEnable value error") &&
         set("wireless", "wifi1", "dfs_puncture_en", std::to_string(settings.multi_ru_enable), "set MRU error") &&
         set("devicecustom", "info", "locationCustom", std::to_string(settings.location), "set location error") &&
         set("devicecustom", "info", "locationCustom", settings.location_custom, "set locationCustom error") &&
         set("repeater", "compatiMode", "value", std::to_string(settings.compati_mode),
             "set compatiMode value error") &&
         read("button_mesh", "easymesh", "compatiWiFi6Mode", before.compati_wifi6_mode,
              "get compatiWiFi6Mode value error") &&
         set("button_mesh", "easymesh", "compatiWiFi6Mode", std::to_string(settings.compati_wifi6_mode),
             "set compatiWiFi6Mode value error");
}

bool write_mesh_mode(const AgentSettings& settings, AgentState& before) {
  if (get_mesh_mode_value(before.mesh_mode) != 0) {
    log_error("get mesh mode value error");
    return false;
  }
  const int mode = settings.multi_link_operation_enable;
  if (!is_mesh_mode(mode)) return true;
  return set("button_mesh", "easymesh", "mode", std::to_string(mode), "set mesh mode value error");
}

// With Wi-Fi 6 compatibility the unit falls back to 2.4 + 5 GHz.
bool switch_6ghz(const AgentSettings& settings) {
  const bool is_off = settings.compati_wifi6_mode == 1;
  if (is_off && !set("button_mesh", "easymesh", "mode", "1", "set mesh mode value error")) return false;
  for (const char* package : kWirelessPackages) {
    for (const char* section : k6GhzNetworks) {
      if (!set(package, section, "disabled", is_off ? "1" : "0", "set 6GHz disabled error")) return false;
    }
  }
  return true;
}

// The client hears of it before the unit leaves its mesh.
int close_mesh(FCGX_Request* request, std::string_view text) {
  answer(request, text);
  os_system(kCloseMesh);
  return 0;
}

int join_mesh(FCGX_Request* request) {
  os_system("/usr/sbin/easymesh_agent.sh &");
  return answer(request, get_brand_index() == kBrandOrvane ? kAgentOkWait130 : kAgentOkWait150);
}

int change_mesh(FCGX_Request* request) {
  if (!set("button_mesh", "easymesh", "mode_change", "1", "set mode_change error")) {
    return answer(request, kResultFailed);
  }
  return close_mesh(request, kAgentOkWait150);
}

int act(FCGX_Request* request, AgentAction action, const AgentSettings& settings) {
  if (action == AgentAction::kNothing) return answer(request, kResultOkWait20);
  if (action == AgentAction::kReload) {
    os_system("wifi reload &");
    return answer(request, kAgentOkWait120);
  }
  if (!switch_6ghz(settings)) return answer(request, kResultFailed);
  if (action == AgentAction::kMeshOff) return close_mesh(request, kAgentOkWait120);
  if (action == AgentAction::kMeshOn) return join_mesh(request);
  return change_mesh(request);
}

}  // namespace

int handle_agent_wifi_client_info(FCGX_Request* request, const char* body) {
  if (body == nullptr) {
    log_error("request error");
    return answer(request, kResultUnusable);
  }
  const json::Document document(body);
  if (!document.is_json()) {
    log_error("can't parse data to json format.");
    return answer(request, kResultUnusable);
  }
  const std::optional<AgentSettings> settings = parse_agent_settings(document.root());
  if (!settings) return answer(request, kResultUnusable);
  AgentState before;
  if (!write_settings(*settings, before) || !write_mesh_mode(*settings, before)) return answer(request, kResultFailed);
  if (get_mesh_value(before.mesh) != 0) {
    log_error("get mesh value error");
    return answer(request, kResultFailed);
  }
  return act(request, choose_agent_action(*settings, before), *settings);
}

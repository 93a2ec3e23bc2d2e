// What the set-up screens of a mesh agent send, and what is done about it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "answer/json_reading.h"

struct AgentSettings {
  int mesh = 0;  // 1 on, 0 off; other values change neither
  int frequency = 0;
  int multi_link_operation_enable = 0;  // the mesh mode; other values than 0, 1, 2 leave it
  int ieee802dot11r = 0;
  int multi_ru_enable = 0;
  int location = 0;
  std::string location_custom;  // at most kLocationCustomMax bytes
  int led_status = 0;
  int compati_mode = 0;
  int compati_wifi6_mode = 0;  // 1: the unit falls back to 2.4 + 5 GHz
};

inline constexpr std::size_t kLocationCustomMax = 17;

// What stood in UCI before the request.
struct AgentState {
  int mesh = 0;
  int mesh_mode = 0;
  int multi_ru = 0;
  int compati_wifi6_mode = 0;
};

// What a request comes to.
enum class AgentAction {
  kNothing,
  kReload,     // multi-RU alone has changed
  kMeshOff,    // the unit leaves the mesh
  kMeshOn,     // the unit joins a mesh
  kMeshChange  // the unit joins again in another mode
};

// Every key is required; nullopt (logged) at the first that is missing, or that UCI cannot hold.
std::optional<AgentSettings> parse_agent_settings(const json::Object& asked);

// 0, 1 or 2; other numbers leave the mode as it is.
bool is_mesh_mode(int mode);

// A request that repeats what is in force comes to nothing: Wi-Fi 6 compatibility makes 2.4 + 5 GHz of every mode, also
// of the one that stands in UCI.
AgentAction choose_agent_action(const AgentSettings& settings, const AgentState& before);

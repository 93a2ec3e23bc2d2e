// GET and POST /api/v1/remote-maintenance: the maker's update and management agents.
#include <array>
#include <cstdlib>
#include <optional>
#include <string>

#include "access/switches.h"
#include "answer/answer.h"
#include "answer/json_reading.h"
#include "handlers.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/brand.h"

namespace {

constexpr SwitchOption kUpdates{"enable", "hota", "info", "auto"};
constexpr SwitchOption kDetails{"detailInfoSendEnable", "firmware", "idm", "enabled"};

json::ObjectText read_state() {
  constexpr std::size_t kNumberSize = 8;
  const brands::Brand* brand = unit::brand_of_device_id();
  if (brand == nullptr) return json::result_text(1);
  const std::optional<int> running = count_lines("ps | grep '/usr/sbin/hotacron' | grep -v 'grep' | wc -l");
  if (!running) return json::result_text(1);
  if (*running != 0) return json::result_text(2);
  const std::optional<bool> enable = stored_switch(kUpdates);
  if (!enable) return json::result_text(1);
  json::ObjectText document = json::result_text(0);
  document.add("version", 1).add(kUpdates.key, int{*enable});
  if (!brand->shows_maintenance_details) return document;
  const auto detail = uci::Section(kDetails.package, kDetails.section).read(kDetails.option, kNumberSize);
  if (!detail) return json::result_text(1);
  document.add(kDetails.key, std::atoi(detail->c_str()));
  return document;
}

// Runs the commands until one fails.
template <std::size_t kCount>
int run_chain(const std::array<const char*, kCount>& commands) {
  for (const char* command : commands) {
    if (os_system(command) != 1) return 2;
  }
  return 0;
}

int apply_agents(bool enable) {
  constexpr std::array<const char*, 2> kStart{"/usr/sbin/IDM_from_qv/idm_start &", "/etc/init.d/nwm_package start &"};
  constexpr std::array<const char*, 3> kStop{"/usr/sbin/hotacron", "/usr/sbin/IDM_from_qv/idm_stop &",
                                             "/etc/init.d/nwm_package stop &"};
  return enable ? run_chain(kStart) : run_chain(kStop);
}

// The `result` to answer.
int apply_state(const json::Object& asked) {
  const brands::Brand* brand = unit::brand_of_device_id();
  if (!asked.flag(kUpdates.key) || brand == nullptr) return 1;
  const bool has_agents = brand->has_maintenance_agents;
  if (has_agents && !asked.flag(kDetails.key)) return 1;
  if (const int result = apply_switch(asked, kUpdates); result != 0) return result;
  if (!has_agents) return os_system("/usr/sbin/hotacron") == 1 ? 0 : 2;
  if (const int result = apply_switch(asked, kDetails); result != 0) return result;
  return apply_agents(asked.flag(kUpdates.key) == true);
}

}  // namespace

int handle_get_remote_maintenance(FCGX_Request* request) { return answer(request, read_state()); }

int handle_set_remote_maintenance(FCGX_Request* request, const char* body) {
  return answer_result(request, apply_state(json::Document(body).root()));
}

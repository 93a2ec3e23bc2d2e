// GET and POST /api/v1/remote-maintenance: the maker's update and management agents.
#include <algorithm>
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

using answers::Result;

constexpr SwitchOption kUpdates{"enable", "hota", "info", "auto"};
constexpr SwitchOption kDetails{"detailInfoSendEnable", "firmware", "idm", "enabled"};

json::ObjectText read_state() {
  constexpr std::size_t kNumberSize = 8;
  const brands::Brand* brand = unit::brand_of_device_id();
  if (brand == nullptr) return json::result_text(1);
  const std::optional<int> running = read_count("ps | grep '/usr/sbin/hotacron' | grep -v 'grep' | wc -l");
  if (!running) return json::result_text(1);
  if (*running != 0) return json::result_text(2);
  const std::optional<bool> enable = stored_switch(kUpdates);
  if (!enable) return json::result_text(1);
  json::ObjectText document = json::success_text();
  document.add(kUpdates.key, int{*enable});
  if (!brand->shows_maintenance_details) return document;
  const auto detail = uci::Section(kDetails.package, kDetails.section).read(kDetails.option, kNumberSize);
  if (!detail) return json::result_text(1);
  document.add(kDetails.key, std::atoi(detail->c_str()));
  return document;
}

// Runs the commands until one fails.
template <std::size_t kCount>
Result run_chain(const std::array<const char*, kCount>& commands) {
  const bool is_done = std::ranges::all_of(commands, [](const char* command) { return os_system(command) == 1; });
  return is_done ? Result::kOk : Result::kFailed;
}

Result apply_agents(bool enable) {
  constexpr std::array<const char*, 2> kStart{"/usr/sbin/IDM_from_qv/idm_start &", "/etc/init.d/nwm_package start &"};
  constexpr std::array<const char*, 3> kStop{"/usr/sbin/hotacron", "/usr/sbin/IDM_from_qv/idm_stop &",
                                             "/etc/init.d/nwm_package stop &"};
  return enable ? run_chain(kStart) : run_chain(kStop);
}

constexpr std::array<const char*, 1> kRenew{"/usr/sbin/hotacron"};

Result apply_state(const json::Object& asked) {
  const brands::Brand* brand = unit::brand_of_device_id();
  if (!asked.flag(kUpdates.key) || brand == nullptr) return Result::kUnusable;
  const bool has_agents = brand->has_maintenance_agents;
  if (has_agents && !asked.flag(kDetails.key)) return Result::kUnusable;
  if (const Result result = apply_switch(asked, kUpdates); result != Result::kOk) return result;
  if (!has_agents) return run_chain(kRenew);
  if (const Result result = apply_switch(asked, kDetails); result != Result::kOk) return result;
  return apply_agents(asked.flag(kUpdates.key) == true);
}

}  // namespace

int handle_get_remote_maintenance(FCGX_Request* request) { return answer(request, read_state()); }

int handle_set_remote_maintenance(FCGX_Request* request, const char* body) {
  return answer_result(request, apply_state(json::Document(body).root()));
}

// GET and POST /api/v1/remote-maintenance: the maker's update and management agents.
#include <array>
#include <optional>
#include <string>

#include "access/switches.h"
#include "answer/answer.h"
#include "handlers.h"
#include "system_helpers.h"

namespace {

enum class Device { kOrvane, kTesmir, kOther };

std::optional<Device> read_device() {
  std::array<char, 16> id{};
  if (getDeviceId(id.data(), id.size()) != 0) return std::nullopt;
  const std::string text = id.data();
  if (text.starts_with("0221")) return Device::kOrvane;
  return text.starts_with("0121") ? Device::kTesmir : Device::kOther;
}

json::JsonPtr result_document(int result) {
  json::JsonPtr document = json::new_object();
  json::add(document.get(), "result", result);
  return document;
}

json::JsonPtr read_state() {
  const std::optional<Device> device = read_device();
  const std::optional<int> running = count_lines("ps | grep '/usr/sbin/hotacron' | grep -v 'grep' | wc -l");
  if (!device || !running) return result_document(1);
  if (*running != 0) return result_document(2);
  const std::optional<int> enable = stored_switch("hota", "info", "auto");
  if (!enable) return result_document(1);
  const bool has_detail = *device == Device::kOrvane;
  const std::optional<int> detail = has_detail ? stored_switch("firmware", "idm", "enabled") : std::nullopt;
  if (has_detail && !detail) return result_document(1);

  json::JsonPtr document = result_document(0);
  json::add(document.get(), "version", 1);
  json::add(document.get(), "enable", *enable);
  if (detail) json::add(document.get(), "detailInfoSendEnable", *detail);
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

int apply_agents(int enable) {
  constexpr std::array<const char*, 2> kStart{"/usr/sbin/IDM_from_qv/idm_start &", "/etc/init.d/nwm_package start &"};
  constexpr std::array<const char*, 3> kStop{"/usr/sbin/hotacron", "/usr/sbin/IDM_from_qv/idm_stop &",
                                             "/etc/init.d/nwm_package stop &"};
  return enable == 1 ? run_chain(kStart) : run_chain(kStop);
}

// The `result` to answer.
int apply_state(const json::JsonPtr& json) {
  const std::optional<int> enable = read_switch(json, "enable");
  if (!enable || !set_switch("hota", "info", "auto", *enable)) return 1;
  const std::optional<Device> device = read_device();
  if (!device) return 1;
  if (*device == Device::kTesmir) return os_system("/usr/sbin/hotacron") == 1 ? 0 : 2;
  const std::optional<int> detail = read_switch(json, "detailInfoSendEnable");
  if (!detail || !set_switch("firmware", "idm", "enabled", *detail)) return 1;
  return apply_agents(*enable);
}

}  // namespace

int handle_get_remote_maintenance(FCGX_Request* request) { return answer(request, read_state()); }

int handle_set_remote_maintenance(FCGX_Request* request, const char* body) {
  const int result = apply_state(json::parse(body));
  if (result == 0) return answer(request, kResultOkWait20);
  return answer(request, result == 1 ? kResultUnusable : kResultFailed);
}

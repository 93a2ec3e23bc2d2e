// GET and POST /api/v1/fsecure_sense: the security service, which exists on one brand only.
#include <array>
#include <cstring>
#include <string>

#include "access/switches.h"
#include "answer/answer.h"
#include "handlers.h"
#include "platform/file.h"
#include "system_helpers.h"
#include "uci_access.h"

namespace {

constexpr const char* kVersionPath = "/opt/sense/VERSION";
constexpr int kNotInstalled = -1;
constexpr SwitchOption kDisabled{"", "fsecure", "sense", "disabled"};

bool is_service_device() {
  std::array<char, 16> id{};
  return getDeviceId(id.data(), id.size()) == 0 && std::strncmp(id.data(), "0121", 4) == 0;
}

json::JsonPtr result_document(int result) {
  json::JsonPtr document = json::new_object();
  json::add(document.get(), "result", result);
  if (result == 0) json::add(document.get(), "version", 1);
  return document;
}

json::JsonPtr read_service() {
  constexpr std::size_t kVersionMax = 15;
  if (!is_service_device()) return result_document(1);
  // While its script runs, the service is starting or stopping.
  const std::optional<int> scripts = count_lines("ps | grep '/opt/sense/bin/sense_init.sh' | grep -v 'grep' | wc -l");
  if (!scripts) return result_document(1);
  if (*scripts != 0) return result_document(2);
  if (!platform::file_exists(kVersionPath)) {
    json::JsonPtr document = result_document(0);
    json::add(document.get(), "enable", kNotInstalled);
    return document;
  }
  const std::optional<int> disabled = stored_switch(kDisabled);
  const std::optional<std::string> version = platform::read_file(kVersionPath, kVersionMax);
  if (!disabled || !version || version->empty()) return result_document(1);
  json::JsonPtr document = result_document(0);
  json::add(document.get(), "enable", *disabled == 0 ? 1 : 0);
  json::add(document.get(), "sense_ver", without_line_end(*version));
  return document;
}

}  // namespace

int handle_get_fsecure_sense(FCGX_Request* request) { return answer(request, read_service()); }

int handle_set_fsecure_sense(FCGX_Request* request, const char* body) {
  constexpr std::size_t kOpModeSize = 16;
  const json::JsonPtr json = json::parse(body);
  const std::optional<int> enable = read_switch(json, "enable");
  const bool is_router = uci_read_or("system", "@system[0]", "op_mode", kOpModeSize, "") == "router";
  if (!is_service_device() || !is_router || !enable) return answer(request, kResultUnusable);
  if (!set_switch(kDisabled, 1 - *enable)) return answer(request, kResultFailed);
  os_system(*enable == 1 ? "/opt/sense/bin/sense_init.sh start &" : "/opt/sense/bin/sense_init.sh stop &");
  return answer(request, kResultOkWait20);
}

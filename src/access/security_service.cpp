// GET and POST /api/v1/fsecure_sense: the security service, which exists on one brand only.
#include <string>

#include "access/switches.h"
#include "answer/answer.h"
#include "answer/json_reading.h"
#include "handlers.h"
#include "platform/file.h"
#include "platform/text.h"
#include "system_helpers.h"
#include "unit/brand.h"
#include "unit/operating_mode.h"

namespace {

constexpr const char* kVersionPath = "/opt/sense/VERSION";
constexpr int kNotInstalled = -1;
constexpr SwitchOption kDisabled{"", "fsecure", "sense", "disabled"};

bool has_service() {
  const brands::Brand* brand = unit::brand_of_device_id();
  return brand != nullptr && brand->has_security_service;
}

json::ObjectText read_service() {
  constexpr std::size_t kVersionMax = 15;
  if (!has_service()) return json::result_text(1);
  // While its script runs, the service is starting or stopping.
  const std::optional<int> scripts = read_count("ps | grep '/opt/sense/bin/sense_init.sh' | grep -v 'grep' | wc -l");
  if (!scripts) return json::result_text(1);
  if (*scripts != 0) return json::result_text(2);
  json::ObjectText document = json::success_text();
  if (!platform::file_exists(kVersionPath)) return document.add("enable", kNotInstalled);
  const std::optional<bool> disabled = stored_switch(kDisabled);
  const std::optional<std::string> version =
      platform::read_file(kVersionPath, kVersionMax + platform::kLongestCharacter);
  if (!disabled || !version || version->empty()) return json::result_text(1);
  return document.add("enable", *disabled ? 0 : 1)
      .add("sense_ver", without_line_end(platform::cut_utf8(*version, kVersionMax)));
}

}  // namespace

int handle_get_fsecure_sense(FCGX_Request* request) { return answer(request, read_service()); }

int handle_set_fsecure_sense(FCGX_Request* request, const char* body) {
  const std::optional<bool> enable = json::Document(body)->flag("enable");
  const bool is_router = unit::operating_mode_or_none().is_router();
  if (!has_service() || !is_router || !enable) return answer(request, answers::kUnusable);
  if (!set_switch(kDisabled, !*enable)) return answer(request, answers::kFailed);
  os_system(*enable ? "/opt/sense/bin/sense_init.sh start &" : "/opt/sense/bin/sense_init.sh stop &");
  return answer(request, answers::wait(20));
}

// GET and POST /api/v1/wireless/wps-status, POST /api/v1/wireless/wps.
#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "handlers.h"
#include "platform/background.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "wireless.h"
#include "wireless/wps/wps_options.h"
#include "wireless/wps/wps_status.h"

namespace {

constexpr std::size_t kPbcSize = 32;

bool is_pbc_on(const char* ifname) { return uci::Section("wireless", ifname).read_number("wps_pbc", kPbcSize) == 1; }

void set_wps_options(bool is_on) {
  for (const char* ifname : wps::kSsids) wps::write(ifname, is_on ? wps::Change::kOn : wps::Change::kOff);
}

}  // namespace

int handle_get_wpsstatus(FCGX_Request* request) {
  int status = 0;
  const int read = getWpsStatus(status);
  if (read != 0) log_debug("get wpsStatus fail!");
  json::ObjectText document = json::success_text();
  document.add("status", status);
  answer(request, std::move(document));
  return read == 0 ? 0 : 1;
}

// Other values than 0 and 1 succeed and change nothing.
int handle_set_wpsstatus(FCGX_Request* request, const char* body) {
  const json::Document document(body);
  const std::optional<int> status = document->number("status");
  if (!status) return answer(request, answers::kUnusable);
  if (*status == 0 || *status == 1) {
    set_wps_options(*status == 1);
    if (!platform::start_detached([] { wifi_reload(); })) {
      log_debug("[%s][%d]:pthread create failed", __func__, __LINE__);
    }
  }
  return answer(request, answers::wait(20));
}

// A push-button session runs on both bands or not at all.
int handle_post_wps(FCGX_Request* request, const char* /*body*/) {
  if (!std::ranges::all_of(wps::kSsids, is_pbc_on)) return answer(request, answers::kUnusable);
  if (!platform::start_detached([] { os_system("sh /usr/sbin/wps_web.sh"); })) {
    log_debug("[%s][%d]:pthread create failed", __func__, __LINE__);
    return answer(request, answers::kUnusable);
  }
  return answer(request, answers::wait(20));
}

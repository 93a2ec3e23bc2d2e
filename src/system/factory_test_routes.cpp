// POST /api/v1/test/led, /test/switch and /test/cert-db-reset, for the production line.
#include "answer/answer.h"
#include "handlers.h"
#include "platform/log.h"
#include "system/device.h"
#include "system_helpers.h"

namespace {

constexpr int kFirstPosition = 1;
constexpr int kLastPosition = 3;

}  // namespace

int handle_test_led(FCGX_Request* request, const char* body) {
  if (!json::parse(body)) {
    if (body != nullptr) log_debug("parse json fail\n");
    return answer(request, kResultUnusable);
  }
  os_system("sh /usr/sbin/ledtest");
  return answer(request, kResultOkWait20);
}

int handle_test_switch(FCGX_Request* request, const char* body) {
  const json::JsonPtr json = json::parse(body);
  if (!json) {
    log_debug("parse json fail\n");
    return answer(request, kResultUnusable);
  }
  const int position = json::int_member(json.get(), "position").value_or(0);
  os_system("fact switch-key 1");
  int state = -1;
  get_switch_state(state);
  if (state == -1 || position < kFirstPosition || position > kLastPosition) return answer(request, kResultUnusable);

  const json::JsonPtr document = json::new_object();
  json::add(document.get(), "result", 0);
  json::add(document.get(), "version", 1);
  json::add(document.get(), "position", position);
  json::add(document.get(), "switchTestResult", state + kFirstPosition == position ? 1 : 0);
  return answer(request, document);
}

int handle_test_cert_db_reset(FCGX_Request* request, const char* /*body*/) {
  os_system("sh /usr/sbin/resetdbnum");
  return answer(request, kResultOkWait20);
}

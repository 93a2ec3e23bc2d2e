// POST /api/v1/test/led, /test/switch and /test/cert-db-reset, for the production line.
#include "answer/answer.h"
#include "answer/read_object.h"
#include "handlers.h"
#include "system/device.h"
#include "system_helpers.h"

namespace {

constexpr const char* kNoObject = "parse json fail\n";
constexpr int kFirstPosition = 1;
constexpr int kLastPosition = 3;

}  // namespace

int handle_test_led(FCGX_Request* request, const char* body) {
  if (!read_object(request, body, {.no_json = kNoObject, .no_object = kNoObject, .priority = LOG_DEBUG})) return 0;
  os_system("sh /usr/sbin/ledtest");
  return answer(request, answers::wait(20));
}

int handle_test_switch(FCGX_Request* request, const char* body) {
  const BodyMessages messages{
      .no_content = kNoObject, .no_json = kNoObject, .no_object = kNoObject, .priority = LOG_DEBUG};
  const json::Document document = read_object(request, body, messages);
  if (!document) return 0;
  const int position = document->number("position").value_or(0);
  if (position < kFirstPosition || position > kLastPosition) return answer(request, answers::kUnusable);

  os_system("fact switch-key 1");
  int state = -1;
  get_switch_state(state);
  if (state == -1) return answer(request, answers::kUnusable);

  json::ObjectText result = json::success_text();
  result.add("position", position);
  result.add("switchTestResult", state + kFirstPosition == position ? 1 : 0);
  return answer(request, std::move(result));
}

int handle_test_cert_db_reset(FCGX_Request* request, const char* /*body*/) {
  os_system("sh /usr/sbin/resetdbnum");
  return answer(request, answers::wait(20));
}

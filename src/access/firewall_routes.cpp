// GET and POST /api/v1/security/passthrough and /api/v1/security/protect.
#include <optional>
#include <utility>

#include "access/firewall.h"
#include "access/switches.h"
#include "answer/answer.h"
#include "answer/json_reading.h"
#include "handlers.h"
#include "platform/background.h"

namespace {

using answers::Result;

constexpr SwitchOption kPptp{"pptpEnable", "security", "security", "pptp"};
constexpr SwitchOption kIpsec{"ipsecEnable", "security", "security", "ipsec"};
constexpr SwitchOption kDos{"dosEnable", "security", "security", "dos"};
constexpr SwitchOption kSpi{"spiEnable", "security", "security", "spi"};
// A marker for the firewall scripts that the inspection changed; no request names it.
constexpr SwitchOption kSpiChanged{"", "security", "security", "autoflag"};

// `first` is reported first and read last.
int answer_switches(FCGX_Request* request, const SwitchOption& first, const SwitchOption& second) {
  const std::optional<bool> second_value = stored_switch(second);
  if (!second_value) return answer(request, answers::kUnusable);
  const std::optional<bool> first_value = stored_switch(first);
  if (!first_value) return answer(request, answers::kUnusable);
  json::ObjectText document = json::success_text();
  document.add(first.key, int{*first_value}).add(second.key, int{*second_value});
  return answer(request, std::move(document));
}

int answer_and_reload(FCGX_Request* request, Result result) {
  answer_result(request, result);
  if (result == Result::kOk) platform::start_detached(exec_securityReload);
  return static_cast<int>(result);
}

// What was written before a failure stays.
Result apply_passthrough(const json::Object& asked) {
  const Result result = apply_switch(asked, kPptp);
  return result != Result::kOk ? result : apply_switch(asked, kIpsec);
}

Result apply_protect(const json::Object& asked) {
  if (const Result result = apply_switch(asked, kDos); result != Result::kOk) return result;
  const std::optional<bool> old_spi = stored_switch(kSpi);
  if (const Result result = apply_switch(asked, kSpi); result != Result::kOk) return result;
  if (old_spi != asked.flag(kSpi.key)) set_switch(kSpiChanged, true);
  return Result::kOk;
}

}  // namespace

int handle_get_security_passthrough(FCGX_Request* request) { return answer_switches(request, kPptp, kIpsec); }
int handle_get_security_protect(FCGX_Request* request) { return answer_switches(request, kDos, kSpi); }

int handle_set_security_passthrough(FCGX_Request* request, const char* body) {
  return answer_and_reload(request, apply_passthrough(json::Document(body).root()));
}

int handle_set_security_protect(FCGX_Request* request, const char* body) {
  return answer_and_reload(request, apply_protect(json::Document(body).root()));
}

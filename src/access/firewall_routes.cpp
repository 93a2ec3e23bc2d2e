// GET and POST /api/v1/security/passthrough and /api/v1/security/protect.
#include "access/firewall.h"
#include "access/switches.h"
#include "answer/answer.h"
#include "handlers.h"
#include "platform/background.h"

namespace {

constexpr SwitchOption kPptp{"pptpEnable", "security", "security", "pptp"};
constexpr SwitchOption kIpsec{"ipsecEnable", "security", "security", "ipsec"};
constexpr SwitchOption kDos{"dosEnable", "security", "security", "dos"};
constexpr SwitchOption kSpi{"spiEnable", "security", "security", "spi"};
// A marker for the firewall scripts that the inspection changed; no request names it.
constexpr SwitchOption kSpiChanged{"", "security", "security", "autoflag"};

// `first` is reported first and read last.
int answer_switches(FCGX_Request* request, const SwitchOption& first, const SwitchOption& second) {
  const std::optional<int> second_value = stored_switch(second);
  if (!second_value) return answer(request, kResultUnusable);
  const std::optional<int> first_value = stored_switch(first);
  if (!first_value) return answer(request, kResultUnusable);
  const json::JsonPtr document = json::new_object();
  json::add(document.get(), "result", 0);
  json::add(document.get(), "version", 1);
  json::add(document.get(), first.key, *first_value);
  json::add(document.get(), second.key, *second_value);
  return answer(request, document);
}

int answer_and_reload(FCGX_Request* request, int result) {
  answer_result(request, result);
  if (result == 0) platform::start_detached(exec_securityReload);
  return result;
}

// The `result` to answer; what was written before a failure stays.
int apply_passthrough(const json::JsonPtr& json) {
  const int result = apply_switch(json, kPptp);
  return result != 0 ? result : apply_switch(json, kIpsec);
}

int apply_protect(const json::JsonPtr& json) {
  if (const int result = apply_switch(json, kDos); result != 0) return result;
  const std::optional<int> old_spi = stored_switch(kSpi);
  if (const int result = apply_switch(json, kSpi); result != 0) return result;
  if (old_spi != read_switch(json, kSpi.key)) set_switch(kSpiChanged, 1);
  return 0;
}

}  // namespace

int handle_get_security_passthrough(FCGX_Request* request) { return answer_switches(request, kPptp, kIpsec); }
int handle_get_security_protect(FCGX_Request* request) { return answer_switches(request, kDos, kSpi); }

int handle_set_security_passthrough(FCGX_Request* request, const char* body) {
  return answer_and_reload(request, apply_passthrough(json::parse(body)));
}

int handle_set_security_protect(FCGX_Request* request, const char* body) {
  return answer_and_reload(request, apply_protect(json::parse(body)));
}

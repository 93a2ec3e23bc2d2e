// GET and POST /api/v1/security/passthrough and /api/v1/security/protect.
#include "access/firewall.h"
#include "access/switches.h"
#include "answer/answer.h"
#include "handlers.h"
#include "platform/background.h"
#include "uci_access.h"

namespace {

struct Switch {
  const char* key;
  const char* option;
};

// `first` is reported first and read last.
int answer_switches(FCGX_Request* request, const Switch& first, const Switch& second) {
  const std::optional<int> second_value = stored_switch("security", "security", second.option);
  if (!second_value) return answer(request, kResultUnusable);
  const std::optional<int> first_value = stored_switch("security", "security", first.option);
  if (!first_value) return answer(request, kResultUnusable);
  const json::JsonPtr document = json::new_object();
  json::add(document.get(), "result", 0);
  json::add(document.get(), "version", 1);
  json::add(document.get(), first.key, *first_value);
  json::add(document.get(), second.key, *second_value);
  return answer(request, document);
}

// False when the switch is missing, wrong, or cannot be stored.
bool apply_switch(const json::JsonPtr& json, const Switch& wanted) {
  const std::optional<int> value = read_switch(json, wanted.key);
  return value && set_switch("security", "security", wanted.option, *value);
}

int answer_and_reload(FCGX_Request* request) {
  answer(request, kResultOkWait20);
  platform::start_detached(exec_securityReload);
  return 0;
}

constexpr Switch kPptp{"pptpEnable", "pptp"};
constexpr Switch kIpsec{"ipsecEnable", "ipsec"};
constexpr Switch kDos{"dosEnable", "dos"};
constexpr Switch kSpi{"spiEnable", "spi"};

}  // namespace

int handle_get_security_passthrough(FCGX_Request* request) { return answer_switches(request, kPptp, kIpsec); }
int handle_get_security_protect(FCGX_Request* request) { return answer_switches(request, kDos, kSpi); }

int handle_set_security_passthrough(FCGX_Request* request, const char* body) {
  const json::JsonPtr json = json::parse(body);
  if (!apply_switch(json, kPptp) || !apply_switch(json, kIpsec)) return answer(request, kResultUnusable);
  return answer_and_reload(request);
}

int handle_set_security_protect(FCGX_Request* request, const char* body) {
  const json::JsonPtr json = json::parse(body);
  if (!apply_switch(json, kDos)) return answer(request, kResultUnusable);
  const std::optional<int> old_spi = stored_switch("security", "security", kSpi.option);
  if (!apply_switch(json, kSpi)) return answer(request, kResultUnusable);
  // A marker for the firewall scripts that the inspection changed.
  if (old_spi != read_switch(json, kSpi.key)) set_switch("security", "security", "autoflag", 1);
  return answer_and_reload(request);
}

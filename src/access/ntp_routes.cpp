// GET and POST /api/v1/ntp.
#include <cstdlib>
#include <optional>
#include <string>

#include "answer/answer.h"
#include "handlers.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_access.h"

namespace {

constexpr const char* kConfdir = "/etc/config";
constexpr std::size_t kTextSize = 256;

// The switch as any number; a null, an array or an object is none.
std::optional<int> read_enable(const json::JsonPtr& json) {
  const json_type type = json_object_get_type(json::member(json.get(), "enable"));
  if (type == json_type_array || type == json_type_object || type == json_type_null) return std::nullopt;
  return json::int_member(json.get(), "enable");
}

// Each answers its part of the result: 0 applied, 1 missing, 2 failed.

int apply_enable(const std::optional<int>& enable) {
  if (!enable) return 1;
  const std::string text = std::to_string(static_cast<unsigned int>(*enable));
  if (UciSetOption(kConfdir, "system", "ntp", "enabled", text.c_str()) == 0) return 0;
  log_error("fail to set system.ntp.enabled by uci api");
  return 2;
}

int apply_server(const std::optional<std::string>& server) {
  if (!server) return 1;
  int result = 0;
  if (UciDelOption(kConfdir, "system", "ntp", "server") != 0) {
    log_error("fail to del system.ntp.server by uci api");
    result = 2;
  }
  if (UciAddList(kConfdir, "system", "ntp", "server", server->c_str()) != 0) {
    log_error("fail to set system.ntp.server by uci api");
    result = 2;
  }
  return result;
}

}  // namespace

int handle_get_ntp_server(FCGX_Request* request) {
  const std::optional<std::string> enabled = uci_read("system", "ntp", "enabled", kTextSize);
  if (!enabled) {
    log_error("Fail to get system.ntp.enabled value by uci api");
    return answer(request, kResultUnusable);
  }
  const auto servers = uci_read_list("system", "ntp", "server", kTextSize, 1);
  if (!servers) {
    log_error("Fail to get system.ntp.server value by uci api");
    return answer(request, kResultUnusable);
  }
  const json::JsonPtr document = json::new_object();
  json::add(document.get(), "result", 0);
  json::add(document.get(), "version", 1);
  json::add(document.get(), "enable", std::atoi(enabled->c_str()));
  json::add(document.get(), "server", servers->empty() ? std::string() : servers->front());
  return answer(request, document);
}

// Failures are answered in plain text: the page reads them before it decrypts.
int handle_set_ntp_config(FCGX_Request* request, const char* body) {
  if (body == nullptr || *body == '\0') {
    log_error("empty request_body is passed on seting dhcp config");
    return answer_plain(request, kResultUnusable);
  }
  const json::JsonPtr json = json::parse(body);
  if (!json) {
    log_error("can't parse request_body to json format.");
    return answer_plain(request, kResultUnusable);
  }
  const std::optional<int> enable = read_enable(json);
  const int enable_result = apply_enable(enable);
  const int server_result = apply_server(json::text_member(json.get(), "server"));
  const int result = server_result != 0 ? server_result : enable_result;  // the later step decides
  if (result != 0) return answer_plain(request, result == 1 ? kResultUnusable : kResultFailed);
  os_system(*enable != 0 ? "/etc/init.d/sysntpd restart &" : "/etc/init.d/sysntpd stop &");
  return answer(request, kResultOkWait20);
}

// GET and POST /api/v1/ntp.
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "answer/read_object.h"
#include "handlers.h"
#include "platform/log.h"
#include "platform/text.h"
#include "system_helpers.h"
#include "uci_section.h"

namespace {

using answers::Result;

constexpr std::size_t kTextSize = 256;
constexpr const char* kSetHandler = "handle_set_ntp_config";
constexpr BodyMessages kBodyMessages{.no_content = "empty request_body is passed on seting dhcp config",
                                     .no_json = "can't parse request_body to json format.",
                                     .no_object = "can't parse request_body to json format."};

uci::Section ntp() { return {"system", "ntp"}; }

Result apply_enable(const std::optional<int>& enable) {
  if (!enable) return Result::kUnusable;
  const std::string text = std::to_string(static_cast<unsigned int>(*enable));
  if (ntp().set("enabled", text)) return Result::kOk;
  log_error_as(kSetHandler, "fail to set system.ntp.enabled by uci api");
  return Result::kFailed;
}

Result apply_server(const std::string& server) {
  if (server.empty()) return Result::kUnusable;
  Result result = Result::kOk;
  if (!ntp().remove("server")) {
    log_error_as(kSetHandler, "fail to del system.ntp.server by uci api");
    result = Result::kFailed;
  }
  if (!ntp().add_to_list("server", server)) {
    log_error_as(kSetHandler, "fail to set system.ntp.server by uci api");
    result = Result::kFailed;
  }
  return result;
}

}  // namespace

int handle_get_ntp_server(FCGX_Request* request) {
  const std::optional<std::string> enabled = ntp().read("enabled", kTextSize);
  if (!enabled) {
    log_error("Fail to get system.ntp.enabled value by uci api");
    return answer(request, answers::kUnusable);
  }
  const auto servers = ntp().read_list("server", kTextSize, 1);
  if (!servers) {
    log_error("Fail to get system.ntp.server value by uci api");
    return answer(request, answers::kUnusable);
  }
  json::ObjectText document = json::success_text();
  document.add("enable", std::atoi(enabled->c_str()));
  document.add("server", servers->empty() ? std::string() : servers->front());
  return answer(request, std::move(document));
}

// Failures are answered in plain text: kept as it is.
int handle_set_ntp_config(FCGX_Request* request, const char* body) {
  const json::Document document = read_object_plain(request, body, kBodyMessages);
  if (!document) return 0;
  const std::optional<int> enable = document->number("enable");
  const std::string server = document->text("server").value_or("");
  if (!platform::is_one_line(server)) return answer_plain(request, answers::kUnusable);
  const Result enable_result = apply_enable(enable);
  const Result server_result = apply_server(server);
  const Result result = server_result != Result::kOk ? server_result : enable_result;  // the later step decides
  if (result != Result::kOk) return answer_plain(request, answers::refusal(result));
  os_system(*enable != 0 ? "/etc/init.d/sysntpd restart &" : "/etc/init.d/sysntpd stop &");
  return answer(request, answers::wait(20));
}

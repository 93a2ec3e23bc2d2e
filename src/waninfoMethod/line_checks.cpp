// POST /api/v1/pppoe/start, GET /api/v1/pppoe/response, /pppoe/result and /router/inetchk.
#include "waninfoMethod/line_checks.h"

#include <cstdlib>
#include <string>
#include <utility>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "handlers.h"
#include "platform/file.h"
#include "platform/log.h"
#include "platform/process.h"
#include "platform/text.h"
#include "waninfoMethod/wan_link.h"

namespace {

constexpr const char* kProbeScript = "/etc/qvpppoe_chk_cmd.sh";
constexpr const char* kProbeResult = "/tmp/pppoechkresult.txt";

// `response` of the PPPoE probe.
constexpr int kServerFound = 0;
constexpr int kNoServer = 1;
constexpr int kNoCable = 2;

// `connectResult` of the live session.
constexpr int kConnected = 0;
constexpr int kAuthenticationFailed = 1;
constexpr int kOtherError = 2;
constexpr int kNotPppoe = 3;

bool run_probe(const char* caller) {
  const platform::ProcessResult script = platform::run_shell(kProbeScript, {.capture_output = false});
  if (!script.started) log_error_as(caller, "system failed.");
  return script.succeeded();
}

// What is told of a session that is down by its first error.
int result_of_error(json::Object error) {
  const std::optional<std::string> code = error.text("code");
  if (!code) return kConnected;
  log_debug_as("get_pppoe_result", "code %s", code->c_str());
  return *code == "AUTH_TOPEER_FAILED" ? kAuthenticationFailed : kOtherError;
}

// 1 in one of the two fields of four bits says that the test of this family passed.
std::pair<int, int> result_of_reachability(int status) {
  const bool ipv4 = (status & 0xF) == 1;
  const bool ipv6 = ((status >> 4) & 0xF) == 1;
  return {ipv4 || ipv6 ? 0 : 1, (ipv4 ? 1 : 0) + (ipv6 ? 2 : 0)};
}

}  // namespace

int parse_probe_result(std::string_view content) {
  constexpr std::size_t kPieceSize = 8;
  const std::vector<std::string> pieces = platform::split_lines(content, kPieceSize);
  return pieces.empty() ? 0 : std::atoi(pieces.back().c_str());
}

std::optional<int> parse_session_report(std::string_view text) {
  constexpr std::size_t kLongestReport = 4085;
  constexpr std::size_t kLongestProto = 7;
  const json::Document report(std::string(text.substr(0, kLongestReport)).c_str());
  if (!report) {
    log_error_as("get_pppoe_result", "Failed to parse JSON.");
    return std::nullopt;
  }
  const bool up = report->flag("up").value_or(false);
  const std::string proto(platform::cut_utf8(report->text("proto").value_or(""), kLongestProto));
  log_debug_as("get_pppoe_result", "up:%d, proto:%s", up ? 1 : 0, proto.c_str());
  if (up) return proto == "pppoe" ? kConnected : kNotPppoe;
  const json::List errors = report->list("errors");
  if (proto != "pppoe" || errors.size() == 0) return std::nullopt;
  return result_of_error(errors.at(0));
}

void LastPiece::feed(std::string_view text) {
  constexpr std::size_t kPieceMax = 31;
  for (const char c : text) {
    if (is_whole_) last_.clear();
    last_ += c;
    is_whole_ = c == '\n' || last_.size() == kPieceMax;
  }
}

int LastPiece::number() const { return std::atoi(last_.c_str()); }

int GetPPPoeChkResult() {
  run_probe(__func__);
  const std::optional<std::string> content = platform::read_file(kProbeResult);
  if (!content) {
    log_error("open pppoechkresult.txt failed.");
    return -1;
  }
  return parse_probe_result(*content);
}

int get_pppoe_result(int& connect_result) {
  const platform::ProcessResult tool = platform::run_shell("ifstatus wan");
  if (!tool.started) {
    log_error("popen failed.");
    return 1;
  }
  const std::optional<int> result = parse_session_report(tool.output);
  if (!result) return 1;
  connect_result = *result;
  return 0;
}

int get_ipvalue_address() {
  LastPiece last;
  const auto keep_last = [&](std::string_view text) {
    last.feed(text);
    return true;
  };
  const platform::ProcessResult tool = platform::run_shell("inetchk -46 -woi ; echo $?", {.reader = keep_last});
  if (!tool.started) {
    log_error("Failed to run command");
    return 1;
  }
  return last.number();
}

int handle_pppoe_config(FCGX_Request* request, const char* /*body*/) {
  return answer(request, run_probe(__func__) ? answers::wait(20) : answers::kUnusable);
}

int handle_get_pppoe_response(FCGX_Request* request) {
  int link = 0;
  get_wan_link_status(link);
  int response = kNoCable;
  if (link != 0) {
    const int verdict = GetPPPoeChkResult();
    response = verdict == 0 || verdict == -1 ? kNoServer : kServerFound;
  }
  json::ObjectText document = json::success_text();
  document.add("response", response);
  return answer(request, std::move(document));
}

int handle_get_pppoe_result(FCGX_Request* request) {
  int connect_result = kConnected;
  const int result = get_pppoe_result(connect_result);
  json::ObjectText document = json::result_text(result);
  if (result == 0) document.add("version", 1).add("connectResult", connect_result);
  return answer(request, std::move(document));
}

int handle_get_inetchk(FCGX_Request* request) {
  const auto [result, reachability] = result_of_reachability(get_ipvalue_address());
  json::ObjectText document = json::result_text(result);
  document.add("version", 1).add("inetchk", reachability);
  return answer(request, std::move(document));
}

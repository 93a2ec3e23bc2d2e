// GET /api/v1/wireless/sitesurvey.
#include "repeater/site_survey.h"

#include <string>
#include <utility>

#include "answer/answer.h"
#include "handlers.h"
#include "platform/background.h"
#include "platform/log.h"
#include "platform/process.h"
#include "repeater/scan_parser.h"

namespace {

constexpr int kAttempts = 15;
constexpr unsigned int kRetrySeconds = 2;
constexpr std::size_t kOutputMax = std::size_t{64} << 20;  // of one scan; a busy band tells some 4 MB

enum class ScanResult { kNotStarted, kNoBlock, kTooLate, kDone };

ScanResult scan_once(const std::string& command, std::size_t band, json::ListText& list) {
  ScanParser parser(band, list);
  std::size_t read = 0;
  const auto feed = [&](std::string_view piece) {
    parser.feed(piece);
    read += piece.size();
    return read < kOutputMax;
  };
  const platform::ProcessResult result = platform::run_shell(command, {.reader = feed});
  if (!result.started) return ScanResult::kNotStarted;
  parser.finish();
  if (parser.seen_block()) return ScanResult::kDone;
  return result.too_late ? ScanResult::kTooLate : ScanResult::kNoBlock;
}

}  // namespace

int scan_single_interface(std::size_t band, json::ListText& list) {
  const std::string command = "iw dev mld" + std::to_string(band + 1) + " scan flush &";
  for (int attempt = 1; attempt <= kAttempts; ++attempt) {
    switch (scan_once(command, band, list)) {
      case ScanResult::kDone:
        return 0;
      case ScanResult::kNotStarted:
        log_error("Failed to execute command: %s (attempt %d/%d)", command.c_str(), attempt, kAttempts);
        break;
      case ScanResult::kNoBlock:
        log_error("No BSS blocks found in command output: %s (attempt %d/%d)", command.c_str(), attempt, kAttempts);
        platform::sleep_seconds(kRetrySeconds);
        break;
      case ScanResult::kTooLate:
        log_error("Failed to get BSS information in time for command: %s", command.c_str());
        return 0;
    }
  }
  log_error("Failed to get BSS information after %d attempts for command: %s", kAttempts, command.c_str());
  return 0;
}

int handle_get_sitesurvey(FCGX_Request* request) {
  json::ListText list;
  for (std::size_t band = 0; band < kScanBandCount; ++band) {
    if (scan_single_interface(band, list) != 0) return answer(request, answers::kUnusable);
  }
  json::ObjectText document = json::success_text();
  document.add("waitTime", 0).add("wifiApList", std::move(list));
  return answer(request, std::move(document));
}

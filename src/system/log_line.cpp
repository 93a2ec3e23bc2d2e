// Splitting of log lines.
#include "system/log_line.h"

#include <algorithm>
#include <utility>

#include "platform/log.h"
#include "platform/text.h"

namespace {

constexpr std::size_t kMessageMax = 255;

enum class Split { kDone, kNoMark, kNoOpen, kNoClose };

// Copies without a terminator, into a field that keeps its last byte for one.
template <std::size_t kSize>
void overlay(std::array<char, kSize>& field, std::string_view text) {
  std::ranges::copy(platform::cut_utf8(text, kSize - 1), field.begin());
}

std::string message_of(std::string_view rest) {
  return std::string(platform::cut_utf8(platform::trim_start(rest, " "), kMessageMax));
}

Split split_wireless(std::string_view line, LogFields& fields) {
  constexpr std::size_t kMarkLength = 2;
  std::size_t mark = line.find("AM");
  if (mark == std::string_view::npos) mark = line.find("PM");
  if (mark == std::string_view::npos) return Split::kNoMark;
  overlay(fields.time, line.substr(0, mark + kMarkLength));
  overlay(fields.category, "[wlan]");
  fields.message = message_of(line.substr(mark + kMarkLength));
  return Split::kDone;
}

Split split_tagged(std::string_view line, LogFields& fields) {
  const std::size_t open = line.find('[');
  if (open == std::string_view::npos) return Split::kNoOpen;
  const std::size_t close = line.find(']', open);
  if (close == std::string_view::npos) return Split::kNoClose;
  overlay(fields.time, line.substr(0, open == 0 ? 0 : open - 1));
  overlay(fields.category, line.substr(open, close - open + 1));
  fields.message = message_of(line.substr(close + 1));
  return Split::kDone;
}

}  // namespace

int fill_log_msg_value(std::string_view line, LogFields& fields) {
  const bool is_wireless = line.find("wireless") != std::string_view::npos;
  const Split outcome = is_wireless ? split_wireless(line, fields) : split_tagged(line, fields);
  const auto is_first = [](bool& told) { return !std::exchange(told, true); };
  if (outcome == Split::kNoMark && is_first(fields.told.mark)) {
    log_error("unknow format of log mesg of wlan\n");
  } else if (outcome == Split::kNoOpen && is_first(fields.told.open)) {
    log_error("Can't find character '[' in \"%s\"", std::string(line).c_str());
  } else if (outcome == Split::kNoClose && is_first(fields.told.close)) {
    log_error("Can't find character ']' in \"%s\"", std::string(line).c_str());
  }
  return outcome == Split::kDone ? 0 : 1;
}

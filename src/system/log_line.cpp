// Splitting of log lines.
#include "system/log_line.h"

#include <algorithm>

#include "platform/log.h"

namespace {

constexpr std::size_t kMessageMax = 255;

// Copies without a terminator, into a field that keeps its last byte for one.
template <std::size_t kSize>
void overlay(std::array<char, kSize>& field, std::string_view text) {
  std::copy_n(text.begin(), std::min(text.size(), kSize - 1), field.begin());
}

std::string message_of(std::string_view rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  return std::string(rest.substr(0, kMessageMax));
}

int split_wireless(std::string_view line, LogFields& fields) {
  constexpr std::size_t kMarkLength = 2;
  std::size_t mark = line.find("AM");
  if (mark == std::string_view::npos) mark = line.find("PM");
  if (mark == std::string_view::npos) {
    log_error("unknow format of log mesg of wlan\n");
    return 1;
  }
  overlay(fields.time, line.substr(0, mark + kMarkLength));
  overlay(fields.category, "[wlan]");
  fields.message = message_of(line.substr(mark + kMarkLength));
  return 0;
}

}  // namespace

int fill_log_msg_value(std::string_view line, LogFields& fields) {
  if (line.find("wireless") != std::string_view::npos) return split_wireless(line, fields);
  const std::size_t open = line.find('[');
  if (open == std::string_view::npos) {
    log_error("Can't find character '[' in \"%s\"", std::string(line).c_str());
    return 1;
  }
  const std::size_t close = line.find(']', open);
  if (close == std::string_view::npos) {
    log_error("Can't find character ']' in \"%s\"", std::string(line).c_str());
    return 1;
  }
  overlay(fields.time, line.substr(0, open == 0 ? 0 : open - 1));
  overlay(fields.category, line.substr(open, close - open + 1));
  fields.message = message_of(line.substr(close + 1));
  return 0;
}

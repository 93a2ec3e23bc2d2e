// Keeping of the lines of a dump.
#include "mesh/dump_lines.h"

#include <algorithm>

#include "platform/text.h"

namespace {

bool is_hex_or_colon(char character) { return platform::is_hex_digit(character) || character == ':'; }

// "MAC INDEX Remote" of a row of bridged addresses; empty for every other line.
std::string bridged_row(std::string_view line) {
  const std::string_view mac = platform::take_word(line);
  if (mac.size() != kMacLength || !std::ranges::all_of(mac, is_hex_or_colon)) return {};
  const std::string_view index = platform::take_word(line);
  const std::string_view type = platform::take_word(line);
  if (!platform::is_digits(index) || type != "Remote" || !line.empty()) return {};
  return std::string(mac).append(" ").append(index).append(" ").append(type);
}

}  // namespace

DumpLines::DumpLines(std::string_view dump) {
  platform::for_each_line(dump, 0, [this](const std::string& line) { add(line.substr(0, kDumpLineMax)); });
}

void DumpLines::add(std::string_view line) {
  const std::string row = bridged_row(line);
  platform::append_sparingly(text_, row.empty() ? line : row);
  ends_.push_back(static_cast<std::uint32_t>(text_.size()));
}

std::string_view DumpLines::operator[](std::size_t number) const {
  const std::size_t begin = number == 0 ? 0 : ends_[number - 1];
  return std::string_view(text_).substr(begin, ends_[number] - begin);
}

// Parsers of what `iw` prints.
#include "wireless/iw_reading.h"

#include <cstdio>

#include "platform/text.h"

namespace iw {
namespace {

constexpr std::size_t kLineSize = 256;
constexpr std::string_view kBlanks = " \t";

// The blank-delimited word behind the first word `key`; nullopt when there is none.
std::optional<std::string_view> word_behind(std::string_view line, std::string_view key) {
  bool found = false;
  for (std::size_t begin = line.find_first_not_of(kBlanks); begin != std::string_view::npos;
       begin = line.find_first_not_of(kBlanks)) {
    line.remove_prefix(begin);
    const std::string_view word = line.substr(0, line.find_first_of(kBlanks));
    if (found) return word;
    found = word == key;
    line.remove_prefix(word.size());
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> parse_channel_text(std::string_view info) {
  constexpr std::string_view kKey = "channel ";
  for (const std::string& line : platform::split_lines(info, kLineSize)) {
    const std::size_t key = line.find(kKey);
    if (key == std::string::npos) continue;
    const std::size_t begin = key + kKey.size();
    const std::size_t end = line.find(" (", begin);
    if (end != std::string::npos) return line.substr(begin, end - begin);
  }
  return std::nullopt;
}

std::optional<Operating> parse_operating(std::string_view info) {
  for (const std::string& line : platform::split_lines(info, kLineSize)) {
    if (line.find("channel") == std::string::npos || line.find("width:") == std::string::npos) continue;
    Operating operating;
    if (std::sscanf(line.c_str(), "%*s %d %*[^,], width: %d %*s", &operating.channel, &operating.width_mhz) < 2) {
      return std::nullopt;
    }
    return operating;
  }
  return std::nullopt;
}

std::optional<std::string> parse_link_address(std::string_view info, unsigned link_id, std::size_t max_length) {
  const std::string mark = "link " + std::to_string(link_id) + ":";
  const std::string upstream_mark = "link ID " + std::string(link_id < 10 ? " " : "") + std::to_string(link_id) + " ";
  bool found = false;
  for (const std::string& line : platform::split_lines(info, kLineSize)) {
    if (!found) {
      found = line.find(mark) != std::string::npos || line.find(upstream_mark) != std::string::npos;
      if (!found || line.find(upstream_mark) == std::string::npos) continue;
    }
    if (line.find("addr") == std::string::npos) continue;
    if (const auto address = word_behind(line, "addr")) return std::string(address->substr(0, max_length));
  }
  return std::nullopt;
}

}  // namespace iw

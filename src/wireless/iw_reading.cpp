// Parsers of what `iw` prints.
#include "wireless/iw_reading.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <vector>

#include "platform/text.h"

namespace iw {
namespace {

constexpr std::size_t kLineSize = 256;

// The blank-delimited word behind the first word `key`; nullopt when there is none.
std::optional<std::string_view> word_behind(std::string_view line, std::string_view key) {
  const std::vector<std::string_view> words = platform::pieces(line);
  const auto found = std::ranges::find(words, key);
  if (found == words.end() || std::next(found) == words.end()) return std::nullopt;
  return *std::next(found);
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
    if (!platform::holds(line, "channel") || !platform::holds(line, "width:")) continue;
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
      const bool is_upstream = platform::holds(line, upstream_mark);
      found = is_upstream || platform::holds(line, mark);
      if (!is_upstream) continue;
    }
    if (const auto address = word_behind(line, "addr")) return std::string(address->substr(0, max_length));
  }
  return std::nullopt;
}

}  // namespace iw

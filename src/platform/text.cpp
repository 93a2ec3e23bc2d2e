// Pure functions on texts.
#include "platform/text.h"

#include <algorithm>
#include <charconv>
#include <climits>

namespace platform {
namespace {

unsigned char byte_at(std::string_view text, std::size_t index) { return static_cast<unsigned char>(text[index]); }

bool is_continuation(unsigned char byte) { return (byte & 0xC0U) == 0x80; }

// The bytes that a character with this first byte has; 1 for what begins none.
std::size_t sequence_length(unsigned char first) {
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  return first >= 0xF0 && first <= 0xF4 ? 4 : 1;
}

// The second byte's range keeps overlong forms, surrogates and what lies beyond U+10FFFF out.
bool is_second_byte(unsigned char first, unsigned char second) {
  if (first == 0xE0) return second >= 0xA0 && second <= 0xBF;
  if (first == 0xED) return second >= 0x80 && second <= 0x9F;
  if (first == 0xF0) return second >= 0x90 && second <= 0xBF;
  if (first == 0xF4) return second >= 0x80 && second <= 0x8F;
  return is_continuation(second);
}

struct Sequence {
  std::size_t bytes;
  bool complete;
};

// The character that `text` (not empty) begins with, or the longest beginning of one.
Sequence first_sequence(std::string_view text) {
  const unsigned char first = byte_at(text, 0);
  if (first < 0x80) return {1, true};
  const std::size_t length = sequence_length(first);
  std::size_t matching = 1;
  while (matching < length && matching < text.size()) {
    const unsigned char byte = byte_at(text, matching);
    if (matching == 1 ? !is_second_byte(first, byte) : !is_continuation(byte)) break;
    ++matching;
  }
  return {matching, length > 1 && matching == length};
}

// Of `text`, where the first byte stands that is one of `bytes`, or is none; its end where there is no such byte. What
// is looked for is a few bytes at short distances, for which the library's search costs several times as much.
std::string_view from_first(std::string_view text, std::string_view bytes, bool wanted) {
  const auto* first =
      std::ranges::find_if(text, [&](char byte) { return (std::ranges::find(bytes, byte) != bytes.end()) == wanted; });
  return {first, text.end()};
}

bool is_control(unsigned char byte) { return byte < 0x20 || byte == 0x7F; }

}  // namespace

bool holds(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

std::optional<std::string_view> behind(std::string_view text, std::string_view mark) {
  const std::size_t found = text.find(mark);
  return found == std::string_view::npos ? std::nullopt : std::optional(text.substr(found + mark.size()));
}

std::string_view trim_start(std::string_view text, std::string_view dropped) {
  return from_first(text, dropped, false);
}

std::string_view take_word(std::string_view& rest, std::string_view blanks) {
  rest = trim_start(rest, blanks);
  const std::string_view behind_it = from_first(rest, blanks, true);
  const std::string_view word = rest.substr(0, rest.size() - behind_it.size());
  rest = behind_it;
  return word;
}

std::vector<std::string_view> pieces(std::string_view text, std::string_view separators) {
  std::vector<std::string_view> found;
  for (std::string_view piece = take_word(text, separators); !piece.empty(); piece = take_word(text, separators)) {
    found.push_back(piece);
  }
  return found;
}

std::string_view take_line(std::string_view& rest, std::size_t max_bytes) {
  const std::string_view within = rest.substr(0, max_bytes);
  const std::size_t line_feed = within.find('\n');
  const std::string_view line = within.substr(0, line_feed == std::string_view::npos ? line_feed : line_feed + 1);
  rest.remove_prefix(line.size());
  return line;
}

void for_each_line(std::string_view text, std::size_t size, const std::function<void(const std::string&)>& visit) {
  while (!text.empty()) {
    std::string_view line = take_line(text, size > 1 ? size - 1 : std::string_view::npos);
    if (line.ends_with('\n')) line.remove_suffix(1);
    visit(std::string(line));
  }
}

std::vector<std::string> split_lines(std::string_view text, std::size_t size) {
  std::vector<std::string> lines;
  for_each_line(text, size, [&lines](const std::string& line) { lines.push_back(line); });
  return lines;
}

bool is_digits(std::string_view text) { return !text.empty() && std::ranges::all_of(text, is_digit); }

std::string lower_case(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

std::string upper_case(std::string_view text) {
  std::string upper(text);
  for (char& letter : upper) {
    if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
  }
  return upper;
}

void append_sparingly(std::string& text, std::string_view more) {
  constexpr std::size_t kLong = std::size_t{128} * 1024;
  const std::size_t needed = text.size() + more.size();
  if (needed <= text.capacity() || needed < kLong) {
    text += more;
    return;
  }
  std::string longer;  // a reserve() of what is there already doubles, too
  longer.reserve(needed + needed / 8);
  longer.append(text).append(more);
  text = std::move(longer);
}

std::string_view cut_utf8(std::string_view text, std::size_t max_bytes) {
  if (text.size() <= max_bytes) return text;
  for (std::size_t back = 1; back < kLongestCharacter && back <= max_bytes; ++back) {
    const std::size_t begin = max_bytes - back;
    const Sequence sequence = first_sequence(text.substr(begin));
    if (sequence.complete && sequence.bytes > back) return text.substr(0, begin);
  }
  return text.substr(0, max_bytes);
}

std::string valid_utf8(std::string_view text) {
  constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    const Sequence sequence = first_sequence(text);
    valid += sequence.complete ? text.substr(0, sequence.bytes) : kReplacement;
    text.remove_prefix(sequence.bytes);
  }
  return valid;
}

bool is_storable(std::string_view text) {
  return std::ranges::none_of(text, [](unsigned char byte) {
    return is_control(byte) && byte != '\t' && byte != '\n' && byte != '\r' && byte != 0x7F;
  });
}

bool is_one_line(std::string_view text) {
  return std::ranges::none_of(text, [](unsigned char byte) { return is_control(byte); });
}

bool parse_decimal(std::string_view text, int& value) {
  const bool is_negative = text.starts_with('-');
  if (!is_digits(text.substr(is_negative ? 1 : 0))) return false;
  int parsed = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
  if (error == std::errc::result_out_of_range) parsed = is_negative ? INT_MIN : INT_MAX;
  value = parsed;
  return true;
}

}  // namespace platform

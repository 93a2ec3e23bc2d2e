// The lists of a macfilter package, from its text.
#include "access/mac_filter_lists.h"

#include <optional>
#include <utility>

#include "access/mac_filter.h"
#include "platform/text.h"

namespace mac_filter {

namespace {

constexpr std::string_view kSection = "config wifi-iface";
constexpr std::string_view kSectionOfInterest = "'ath0'";
constexpr std::string_view kNames = "list namelist '";
constexpr std::string_view kMacs = "list maclist '";

using Lines = std::vector<std::string>;

// A quoted value as UCI writes it, which may hold quotes ('\'') and line feeds: `text` is what follows its opening
// quote, `row` the line it began in and then the line it ends in. nullopt when it does not end as one.
std::optional<std::string> read_quoted(std::string_view text, const Lines& lines, std::size_t& row) {
  constexpr std::string_view kEscapedQuote = R"('\'')";
  std::string value;
  for (std::size_t line = row;;) {
    const std::size_t quote = text.find('\'');
    value += text.substr(0, quote);
    if (quote == std::string_view::npos) {
      if (++line == lines.size()) return std::nullopt;
      value += '\n';
      text = lines[line];
      continue;
    }
    text.remove_prefix(quote);
    if (text.starts_with(kEscapedQuote)) {
      value += '\'';
      text.remove_prefix(kEscapedQuote.size());
      continue;
    }
    if (text.find_first_not_of(" \t\r", 1) != std::string_view::npos) return std::nullopt;
    row = line;
    return value;
  }
}

// Of a line that UCI did not write: what stands between the first and the last quote.
std::optional<std::string> between_quotes(std::string_view line) {
  const std::size_t first = line.find('\'');
  const std::size_t last = line.rfind('\'');
  if (first == last) return std::nullopt;
  return std::string(line.substr(first + 1, last - first - 1));
}

// Appends the value of the list line at `row`, when it has one, and moves `row` to the value's last line.
void append_value(const Lines& lines, std::size_t& row, std::vector<std::string>& values) {
  const std::string_view line = lines[row];
  auto value = read_quoted(line.substr(line.find('\'') + 1), lines, row);
  if (!value) value = between_quotes(line);
  if (value && values.size() < static_cast<std::size_t>(kTableMax)) values.push_back(*std::move(value));
}

}  // namespace

Lists parse_lists(std::string_view text) {
  const Lines lines = platform::split_lines(text);
  Lists lists;
  bool is_in_section = false;
  for (std::size_t row = 0; row < lines.size(); ++row) {
    const std::string_view line = platform::trim_start(lines[row]);
    if (line.starts_with(kSection)) {
      const bool is_of_interest = line.find(kSectionOfInterest) != std::string_view::npos;
      if (is_in_section && !is_of_interest) break;
      is_in_section = is_of_interest;
    }
    if (is_in_section && line.starts_with(kNames)) append_value(lines, row, lists.names);
    if (is_in_section && line.starts_with(kMacs)) append_value(lines, row, lists.macs);
  }
  return lists;
}

}  // namespace mac_filter

// Any bytes, taken apart: the parts are parts of the text, in their order, and within their bounds.
#include "platform/text.h"
#include "require.h"

namespace {

using fuzzing::require;

// The first byte of the input is a bound, the second one a separator.
void take_apart(std::string_view text, std::size_t bound, std::string_view separator) {
  std::string joined;
  std::string_view rest = text;
  for (std::string_view line = platform::take_line(rest, bound); !line.empty();
       line = platform::take_line(rest, bound)) {
    require(line.size() <= bound && line.find('\n') >= line.size() - 1, "a line's bound or end");
    joined += line;
  }
  require(joined == text, "the lines are not the text");
  for (const std::string& line : platform::split_lines(text, bound + 1)) {
    require(line.size() <= bound && !platform::holds(line, "\n"), "a split line");
  }

  std::string without(text);
  std::erase(without, separator.front());
  joined.clear();
  for (const std::string_view piece : platform::pieces(text, separator)) {
    require(!piece.empty() && !platform::holds(piece, separator), "a piece");
    joined += piece;
  }
  require(joined == without, "the pieces are not the text");

  const auto rest_behind = platform::behind(text, separator);
  require(rest_behind.has_value() == platform::holds(text, separator), "behind and holds differ");
  require(!rest_behind || text.ends_with(*rest_behind), "what stands behind");
  require(!platform::trim_start(text, separator).starts_with(separator), "a start that was not trimmed");
}

void bound_and_check(std::string_view text, std::size_t bound) {
  const std::string_view cut = platform::cut_utf8(text, bound);
  require(cut.size() <= bound && text.starts_with(cut), "a cut");
  const std::string valid = platform::valid_utf8(text);
  require(platform::valid_utf8(valid) == valid, "a valid text is not left as it is");
  require(platform::cut_utf8(valid, bound) == platform::valid_utf8(platform::cut_utf8(valid, bound)),
          "a cut character");
  require(platform::is_storable(text) || !platform::is_one_line(text), "one line that cannot be stored");
  int number = 7;
  require(platform::parse_decimal(text, number) || number == 7, "a number that is none");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string_view input = fuzzing::text_of(data, size);
  const std::size_t bound = std::size_t{data[0]} + 1;
  take_apart(input.substr(2), bound, input.substr(1, 1));
  bound_and_check(input.substr(2), bound);
  return 0;
}

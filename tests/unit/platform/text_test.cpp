// Bounds of texts and what they may hold.
#include "platform/text.h"

#include <climits>

#include <gtest/gtest.h>

namespace {

using platform::cut_utf8;
using platform::valid_utf8;

struct Cut {
  std::string_view text;
  std::size_t max_bytes;
  std::string_view expected;
};

TEST(Digits, AreThoseOfAsciiAlone) {
  std::string decimal;
  std::string hexadecimal;
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    if (platform::is_digit(character)) decimal += character;
    if (platform::is_hex_digit(character)) hexadecimal += character;
  }
  EXPECT_EQ(decimal, "0123456789");
  EXPECT_EQ(hexadecimal, "0123456789ABCDEFabcdef");
}

TEST(Digits, StandForTheirValue) {
  unsigned value = 0;
  for (const char digit : std::string_view("0123456789abcdef")) EXPECT_EQ(platform::hex_value(digit), value++);
  value = 10;
  for (const char digit : std::string_view("ABCDEF")) EXPECT_EQ(platform::hex_value(digit), value++);
  for (const char other : std::string_view("/:@G`g \xFF")) EXPECT_EQ(platform::hex_value(other), std::nullopt);
}

TEST(Digits, AreAllOfATextThatHoldsOne) {
  for (const char* text : {"0", "0123456789"}) EXPECT_TRUE(platform::is_digits(text)) << text;
  for (const char* text : {"", " ", "-1", "+1", "1 ", "1a", "\xD9\xA1"})
    EXPECT_FALSE(platform::is_digits(text)) << text;
}

TEST(CutUtf8, LeavesOutACharacterThatDoesNotFitWhole) {
  for (const Cut& row : {
           Cut{"", 0, ""},
           Cut{"abc", 3, "abc"},
           Cut{"abcd", 3, "abc"},
           Cut{"abc", 0, ""},
           Cut{"ab\xC3\xA9", 4, "ab\xC3\xA9"},
           Cut{"ab\xC3\xA9", 3, "ab"},
           Cut{"\xC3\xA9", 1, ""},
           Cut{"a\xE2\x82\xAC", 3, "a"},
           Cut{"a\xE2\x82\xAC", 2, "a"},
           Cut{"a\xE2\x82\xAC"
               "b",
               4, "a\xE2\x82\xAC"},
           Cut{"a\xF0\x9F\x98\x80", 4, "a"},
           Cut{"a\xF0\x9F\x98\x80", 2, "a"},
           Cut{"\xF0\x9F\x98\x80\xF0\x9F\x98\x80", 7, "\xF0\x9F\x98\x80"},
       }) {
    EXPECT_EQ(cut_utf8(row.text, row.max_bytes), row.expected) << row.text << ' ' << row.max_bytes;
  }
}

TEST(CutUtf8, CutsBytesThatAreNoUtf8Anywhere) {
  EXPECT_EQ(cut_utf8("\xFF\xFF\xFF", 2), "\xFF\xFF");
  EXPECT_EQ(cut_utf8("ab\x80\x80\x80\x80", 4), "ab\x80\x80");
  EXPECT_EQ(cut_utf8("a\xE2\x82zz", 2), "a\xE2");  // no character begins there
}

TEST(ValidUtf8, KeepsWhatIsValid) {
  for (const std::string_view text :
       {"", "plain", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", "\x7F\x01", "\xEF\xBF\xBD"}) {
    EXPECT_EQ(valid_utf8(text), text);
  }
}

TEST(ValidUtf8, ShowsOneReplacementForEachLongestBeginning) {
  const std::string replacement = "\xEF\xBF\xBD";
  struct Row {
    std::string_view text;
    std::string expected;
  };
  for (const Row& row : {
           Row{"\xFF", replacement},
           Row{"a\x80"
               "b",
               "a" + replacement + "b"},
           Row{"\xC0\xAF", replacement + replacement},                                      // overlong
           Row{"\xE0\x80\xAF", replacement + replacement + replacement},                    // overlong
           Row{"\xED\xA0\x80", replacement + replacement + replacement},                    // surrogate
           Row{"\xF4\x90\x80\x80", replacement + replacement + replacement + replacement},  // beyond U+10FFFF
           Row{"\xE2\x82", replacement},                                                    // cut
           Row{"\xE2\x82z", replacement + "z"},
           Row{"\xF0\x9F\x98", replacement},
           Row{"\xC3", replacement},
       }) {
    EXPECT_EQ(valid_utf8(row.text), row.expected);
  }
}

TEST(IsStorable, RefusesWhatUciDrops) {
  for (const std::string_view text : {"", "caf\xC3\xA9", "tab\tline\nreturn\r", "\x7F", "\xFF"}) {
    EXPECT_TRUE(platform::is_storable(text));
  }
  for (const std::string_view text : {"\x01", "a\x1F", "\x0B", "\x08z"}) EXPECT_FALSE(platform::is_storable(text));
}

TEST(IsOneLine, RefusesEveryControlCharacter) {
  for (const std::string_view text : {"", "192.168.0.1", "caf\xC3\xA9"}) EXPECT_TRUE(platform::is_one_line(text));
  for (const std::string_view text : {"a\n", "\r", "\t", "\x01", "\x7F"}) EXPECT_FALSE(platform::is_one_line(text));
}

TEST(ParseDecimal, TakesWholeTextsAlone) {
  struct Row {
    std::string_view text;
    int expected;
  };
  for (const Row& row : {Row{"0", 0}, Row{"-1", -1}, Row{"007", 7}, Row{"2147483647", INT_MAX},
                         Row{"99999999999999999999", INT_MAX}, Row{"-99999999999999999999", INT_MIN}}) {
    int value = 5;
    EXPECT_TRUE(platform::parse_decimal(row.text, value)) << row.text;
    EXPECT_EQ(value, row.expected) << row.text;
  }
  for (const std::string_view text : {"", "-", "+1", " 1", "1 ", "1.0", "0x1", "1e3", "--1", "abc", "\xEF\xBC\x91"}) {
    int value = 5;
    EXPECT_FALSE(platform::parse_decimal(text, value)) << text;
    EXPECT_EQ(value, 5);
  }
}

TEST(SplitLines, CutsAtLineFeedsAndAtTheReadersBuffer) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(platform::split_lines(""), Lines{});
  EXPECT_EQ(platform::split_lines("a\nb\r\n\nc"), (Lines{"a", "b\r", "", "c"}));
  EXPECT_EQ(platform::split_lines("abcdef\ng", 4), (Lines{"abc", "def", "", "g"}));
}

TEST(Behind, IsWhatFollowsTheFirstMark) {
  EXPECT_EQ(platform::behind("key: a: b", ": "), "a: b");
  EXPECT_EQ(platform::behind("key:", ":"), "");
  EXPECT_EQ(platform::behind("key", ":"), std::nullopt);
  EXPECT_TRUE(platform::holds("the key", "key"));
  EXPECT_TRUE(platform::holds("", ""));
  EXPECT_FALSE(platform::holds("ke", "key"));
}

TEST(LowerCase, TurnsLettersOfAsciiAlone) {
  EXPECT_EQ(platform::lower_case("AbZz09:@[`{"), "abzz09:@[`{");
  EXPECT_EQ(platform::upper_case("AbZz09:@[`{"), "ABZZ09:@[`{");
  EXPECT_EQ(platform::lower_case("\xC3\x84\xFF"), "\xC3\x84\xFF");
  EXPECT_EQ(platform::upper_case(std::string_view("\0\xE4", 2)), std::string_view("\0\xE4", 2));
  EXPECT_EQ(platform::lower_case(""), "");
}

TEST(TrimStart, DropsWhatTheTextBeginsWith) {
  EXPECT_EQ(platform::trim_start(" \t a b "), "a b ");
  EXPECT_EQ(platform::trim_start("\ta", " "), "\ta");
  EXPECT_EQ(platform::trim_start("  "), "");
  EXPECT_EQ(platform::trim_start(""), "");
}

TEST(TakeWord, LeavesWhatFollowsTheWord) {
  std::string_view rest = " \tone two:\tthree ";
  EXPECT_EQ(platform::take_word(rest), "one");
  EXPECT_EQ(rest, " two:\tthree ");
  EXPECT_EQ(platform::take_word(rest, ": "), "two");
  EXPECT_EQ(platform::take_word(rest, ": "), "\tthree");
  EXPECT_EQ(platform::take_word(rest), "");
  EXPECT_EQ(rest, "");
  EXPECT_EQ(platform::take_word(rest), "");
}

TEST(Pieces, AreWhatStandsBetweenTheSeparators) {
  const auto list = [](std::string_view text, std::string_view separators) {
    const auto found = platform::pieces(text, separators);
    return std::vector<std::string>(found.begin(), found.end());
  };
  EXPECT_EQ(list(" a  b\tc ", " \t"), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(list(",1,,2", ","), (std::vector<std::string>{"1", "2"}));
  EXPECT_EQ(list(" , ", ","), (std::vector<std::string>{" ", " "}));
  EXPECT_TRUE(list("", ",").empty());
  EXPECT_TRUE(list(",,", ",").empty());
}

TEST(TakeLine, GivesWhatFgetsGives) {
  std::string_view rest = "ab\n\nabcd\nx";
  for (const char* line : {"ab\n", "\n", "abc", "d\n", "x", ""}) EXPECT_EQ(platform::take_line(rest, 3), line);
  rest = "one line\nrest";
  EXPECT_EQ(platform::take_line(rest), "one line\n");
  EXPECT_EQ(rest, "rest");
}

}  // namespace

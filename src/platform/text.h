// Pure functions on texts: their parts, bounds that respect characters, and what a text may hold.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// --- Parts. All are loans from the text.

inline constexpr std::string_view kBlanks = " \t";

bool holds(std::string_view text, std::string_view part);
// What stands behind the first `mark`; nullopt when there is none.
std::optional<std::string_view> behind(std::string_view text, std::string_view mark);
// `text` without the `dropped` bytes that it begins with.
std::string_view trim_start(std::string_view text, std::string_view dropped = kBlanks);
// Takes the first word off `rest`, together with the blanks before it: what begins with none of `blanks` and ends
// before the next one. Empty when there is none, and nothing is left then.
std::string_view take_word(std::string_view& rest, std::string_view blanks = kBlanks);
// What stands between the `separators`, each a byte; empty pieces are left out.
std::vector<std::string_view> pieces(std::string_view text, std::string_view separators = kBlanks);
// Takes a line off the beginning of `rest`, with its line feed: of a longer one the first `max_bytes` (1 or more), as
// fgets gives a reader with a buffer of one byte more. Empty when nothing is left.
std::string_view take_line(std::string_view& rest, std::size_t max_bytes = std::string_view::npos);
// The lines of `text`, without their line feeds. With size > 1 as fgets gives them to a reader with a buffer of `size`
// bytes: a line of more than size - 1 bytes comes in pieces.
std::vector<std::string> split_lines(std::string_view text, std::size_t size = 0);
// The same, one at a time, for texts that may be long.
void for_each_line(std::string_view text, std::size_t size, const std::function<void(const std::string&)>& visit);

// --- Digits. No locale has a say.

constexpr bool is_digit(char character) { return character >= '0' && character <= '9'; }
// What a hexadecimal digit of either case stands for; nullopt for any other character.
constexpr std::optional<unsigned> hex_value(char digit) {
  if (is_digit(digit)) return static_cast<unsigned>(digit - '0');
  if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a' + 10);
  if (digit >= 'A' && digit <= 'F') return static_cast<unsigned>(digit - 'A' + 10);
  return std::nullopt;
}
constexpr bool is_hex_digit(char character) { return hex_value(character).has_value(); }
// `text` is decimal digits alone, at least one.
bool is_digits(std::string_view text);

// --- Letters.

// A to Z become a to z, and the other way round. No locale has a say.
std::string lower_case(std::string_view text);
std::string upper_case(std::string_view text);

// --- Long texts.

// Appends. A text grows to twice its size at a time, a long one by an eighth: what it might become is memory, too.
void append_sparingly(std::string& text, std::string_view more);

// --- Bounds and contents.

// Of UTF-8, in bytes. Who reads as many behind a bound sees whether the bound stands inside a character.
inline constexpr std::size_t kLongestCharacter = 4;

// `text` cut to at most `max_bytes`, never inside a UTF-8 character: one that does not fit whole is left out. Bytes
// that are no UTF-8 are cut anywhere.
std::string_view cut_utf8(std::string_view text, std::size_t max_bytes);

// `text` with U+FFFD in place of every byte sequence that is no UTF-8 (surrogates, overlong forms and what lies beyond
// U+10FFFF included), one for each longest beginning of a character.
std::string valid_utf8(std::string_view text);

// UCI keeps `text` as it is: it holds no control character but tab, line feed and carriage return, which libuci drops
// without a word.
bool is_storable(std::string_view text);

// `text` holds no control character at all: what an address, a mask, a MAC, a server or a user's name may be.
bool is_one_line(std::string_view text);

// The integer that the whole of `text` is: an optional '-' and decimal digits. False, with `value` untouched, for
// anything else. What lies beyond `int` becomes its nearest bound.
bool parse_decimal(std::string_view text, int& value);

}  // namespace platform

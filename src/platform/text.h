// Pure functions on texts: bounds that respect characters, and what a text may hold.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

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

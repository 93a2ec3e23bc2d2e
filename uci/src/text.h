// The quoting of values in package files, delta files and command output.
#pragma once

#include <string>
#include <string_view>

namespace uci {

inline void append_escaped(std::string& result, std::string_view text) {
  for (const char character : text) {
    if (character == '\'') {
      result += "'\\''";
    } else {
      result += character;
    }
  }
}

inline void append_quoted(std::string& result, std::string_view text) {
  result += '\'';
  append_escaped(result, text);
  result += '\'';
}

inline std::string quoted(std::string_view text) {
  std::string result;
  append_quoted(result, text);
  return result;
}

}  // namespace uci

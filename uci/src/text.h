// The quoting of values in package files, delta files and command output.
#pragma once

#include <string>
#include <string_view>

namespace uci {

inline std::string escaped(std::string_view text) {
  std::string result;
  for (const char character : text) {
    if (character == '\'') {
      result += "'\\''";
    } else {
      result += character;
    }
  }
  return result;
}

inline std::string quoted(std::string_view text) { return '\'' + escaped(text) + '\''; }

}  // namespace uci

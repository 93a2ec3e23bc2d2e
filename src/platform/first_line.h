// The first line of what a tool printed, as the helpers with C results take it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/text.h"

namespace platform {

inline constexpr std::size_t kFirstLineBuffer = 256;  // longest line that the helpers look at, with its NUL

// As fgets would give it to a buffer of `size` bytes, without its line feed; nullopt for no output.
inline std::optional<std::string> first_line(const std::string& output, std::size_t size) {
  if (output.empty()) return std::nullopt;
  const std::string_view piece = cut_utf8(output, size - 1);
  return std::string(piece.substr(0, piece.find('\n')));
}

}  // namespace platform

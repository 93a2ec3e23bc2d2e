// Reading of a body whose length the client only claims.
#include "request/body.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <vector>

namespace {

constexpr std::size_t kPieceSize = std::size_t{64} * 1024;

// The claim in bytes; 0 for what is no length. Beyond int, where atoi is undefined, the claim counts as the largest.
std::size_t claimed_length(const char* text) {
  const long value = std::strtol(text, nullptr, 10);
  if (value <= 0) return 0;
  return static_cast<std::size_t>(std::min<long>(value, INT_MAX));
}

}  // namespace

std::optional<std::string> read_body(FCGX_Request* request, const char* content_length) {
  const std::size_t claimed = claimed_length(content_length);
  if (claimed == 0) return std::nullopt;
  std::string body;
  std::vector<char> piece(std::min(claimed, kPieceSize));
  while (body.size() < claimed) {
    const int wanted = static_cast<int>(std::min(piece.size(), claimed - body.size()));
    const int got = FCGX_GetStr(piece.data(), wanted, request->in);
    if (got <= 0) break;
    body.append(piece.data(), static_cast<std::size_t>(got));
    if (got < wanted) break;
  }
  return body;
}

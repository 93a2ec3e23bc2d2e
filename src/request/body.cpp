// Reading of a body whose length the client only claims.
#include "request/body.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <new>
#include <sys/mman.h>
#include <utility>

namespace {

constexpr std::size_t kPieceSize = std::size_t{64} * 1024;

// The claim in bytes; 0 for what is no length. Beyond int, where atoi is undefined, the claim counts as the largest.
std::size_t claimed_length(const char* text) {
  const long value = std::strtol(text, nullptr, 10);
  if (value <= 0) return 0;
  return static_cast<std::size_t>(std::min<long>(value, INT_MAX));
}

}  // namespace

Body::Body(std::size_t claimed) : claimed_(claimed) {
  void* space = mmap(nullptr, claimed + 1, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (space == MAP_FAILED) throw std::bad_alloc();
  data_ = std::unique_ptr<char, Unmap>(static_cast<char*>(space), Unmap{claimed + 1});
}

void Body::Unmap::operator()(char* data) const noexcept { munmap(data, length); }

std::optional<Body> read_body(FCGX_Request* request, const char* content_length) {
  const std::size_t claimed = claimed_length(content_length);
  if (claimed == 0) return std::nullopt;
  Body body(claimed);
  while (body.size() < claimed) {
    const std::size_t wanted = std::min(kPieceSize, claimed - body.size());
    const int got = FCGX_GetStr(body.end(), static_cast<int>(wanted), request->in);
    body.commit(static_cast<std::size_t>(std::max(got, 0)));
    if (got < static_cast<int>(wanted)) break;
  }
  return body;
}

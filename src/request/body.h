// The request body: CONTENT_LENGTH is a claim, what arrived is what counts.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>

#include <fcgiapp.h>

#include "request_body.h"

// Address space for a claimed length. The system gives memory to it as bytes arrive, so a claim costs nothing and an
// upload stands in memory once.
class Body {
 public:
  // Throws std::bad_alloc when there is no such address space.
  explicit Body(std::size_t claimed);
  // Where the next bytes go; there is room for all that was claimed.
  char* end() { return data_.get() + size_; }
  // Takes `bytes` of what was put there.
  void commit(std::size_t bytes) { size_ += bytes; }
  // The text, NUL-terminated: memory that was never written is zero.
  [[nodiscard]] const char* c_str() const { return data_.get(); }
  [[nodiscard]] std::size_t size() const { return size_; }
  // What an upload's handler gets, on loan.
  [[nodiscard]] RawBody raw() const { return {{c_str(), size_}, size_ > 0 && size_ == claimed_}; }

 private:
  struct Unmap {
    std::size_t length = 0;
    void operator()(char* data) const noexcept;
  };
  std::unique_ptr<char, Unmap> data_{nullptr, Unmap{}};
  std::size_t claimed_;
  std::size_t size_ = 0;
};

// The body of a POST. nullopt when `content_length` (as atoi reads it) is 0, negative or no number: then nothing is
// read. Otherwise what arrived of at most that many bytes, however little; memory grows with what arrives, not with
// the claim. Throws std::bad_alloc when even that does not fit.
std::optional<Body> read_body(FCGX_Request* request, const char* content_length);

// The request body: CONTENT_LENGTH is a claim, what arrived is what counts.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <optional>

#include <fcgiapp.h>

// A growing buffer. Large ones grow in place where the system can move pages, so that an upload stands in memory once.
class Body {
 public:
  // Makes room for `more` bytes behind what stands and returns where. Throws std::bad_alloc.
  char* extend(std::size_t more);
  // Takes `bytes` of the room made last, and ends the text there.
  void commit(std::size_t bytes);
  [[nodiscard]] const char* c_str() const { return data_ ? data_.get() : ""; }
  [[nodiscard]] std::size_t size() const { return size_; }

 private:
  struct Free {
    void operator()(char* data) const noexcept { std::free(data); }
  };
  std::unique_ptr<char, Free> data_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

// The body of a POST. nullopt when `content_length` (as atoi reads it) is 0, negative or no number: then nothing is
// read. Otherwise what arrived of at most that many bytes, however little; memory grows with what arrives, not with
// the claim. Throws std::bad_alloc when even that does not fit.
std::optional<Body> read_body(FCGX_Request* request, const char* content_length);

// Forgets the last request's body, for a request without one.
void forget_received_body();

// The lines of an open file, one at a time: what is read never stands in memory whole.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>

#include "platform/file.h"

namespace platform {

// Gives lines without their line feed. One of more than `max_bytes` bytes comes in pieces of whole characters.
class LineReader {
 public:
  // `file` may be null: then there are no lines. `max_bytes` is kLongestCharacter (platform/text.h) or more.
  LineReader(FilePtr file, std::size_t max_bytes) : file_(std::move(file)), max_bytes_(max_bytes) {}

  // Puts the next line, or piece of one, into `line`. False at the end of the file, or when it cannot be read.
  bool next(std::string& line);

  [[nodiscard]] bool is_open() const { return file_ != nullptr; }
  // Reading ended before the end of the file.
  [[nodiscard]] bool failed() const { return file_ != nullptr && std::ferror(file_.get()) != 0; }

 private:
  FilePtr file_;
  std::size_t max_bytes_;
  std::string rest_;  // of a line that came in pieces
};

}  // namespace platform

// Reading of lines.
#include "lines.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>

#include "elements.h"
#include "locked_file.h"

namespace uci {
namespace {

constexpr std::size_t kPieceSize = 65536;

}  // namespace

StreamLines::~StreamLines() { std::free(line_); }

std::string_view StreamLines::next() {
  errno = 0;
  const ssize_t length = getline(&line_, &size_, stream_);
  if (length > 0) return {line_, static_cast<std::size_t>(length)};
  if (errno == ENOMEM) throw std::bad_alloc();
  if (std::ferror(stream_) != 0) throw Failure{UCI_ERR_IO};
  return {};
}

// With room to see the end of a small file in.
FileLines::FileLines(const LockedFile& file)
    : file_(file),
      capacity_(std::min(file.size() + 1, kPieceSize)),
      buffer_(std::make_unique_for_overwrite<char[]>(capacity_)) {}

std::string_view FileLines::next() {
  std::size_t searched = 0;
  while (true) {
    const std::string_view rest(buffer_.get() + begin_, end_ - begin_);
    const std::size_t line_end = rest.find('\n', searched);
    if (line_end != std::string_view::npos) {
      begin_ += line_end + 1;
      return rest.substr(0, line_end + 1);
    }
    searched = rest.size();
    if (read_more()) continue;
    begin_ = end_;
    return rest;
  }
}

// False at the end of the file, with the buffer as it was.
bool FileLines::read_more() {
  make_room();
  const std::size_t count = file_.read(buffer_.get() + end_, capacity_ - end_, read_);
  end_ += count;
  read_ += static_cast<off_t>(count);
  return count > 0;
}

void FileLines::make_room() {
  if (end_ < capacity_) return;
  const std::size_t size = end_ - begin_;
  if (begin_ > 0) {
    std::memmove(buffer_.get(), buffer_.get() + begin_, size);
  } else {
    auto larger = std::make_unique_for_overwrite<char[]>(2 * capacity_);
    std::memcpy(larger.get(), buffer_.get(), size);
    buffer_ = std::move(larger);
    capacity_ *= 2;
  }
  begin_ = 0;
  end_ = size;
}

}  // namespace uci

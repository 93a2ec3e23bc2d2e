// Where the lines of a text come from: a stream, or a file that is read piece by piece.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string_view>
#include <sys/types.h>

namespace uci {

class LockedFile;

class LineSource {
 public:
  LineSource() = default;
  LineSource(const LineSource&) = delete;
  LineSource& operator=(const LineSource&) = delete;
  virtual ~LineSource() = default;
  // The next line with its line end, which the last one may lack; empty at the end. Valid until the next call. Throws
  // Failure{UCI_ERR_IO}: a text that broke off must not pass for a short one, which a commit would write.
  virtual std::string_view next() = 0;
};

class StreamLines final : public LineSource {
 public:
  StreamLines() = default;
  explicit StreamLines(std::FILE* stream) : stream_(stream) {}
  ~StreamLines() override;
  std::string_view next() override;
  void use(std::FILE* stream) { stream_ = stream; }

 private:
  std::FILE* stream_ = nullptr;
  char* line_ = nullptr;
  std::size_t size_ = 0;
};

class FileLines final : public LineSource {
 public:
  explicit FileLines(const LockedFile& file);  // which outlives it
  std::string_view next() override;

 private:
  bool read_more();
  void make_room();

  const LockedFile& file_;
  off_t read_ = 0;  // bytes of the file
  std::size_t capacity_;
  std::unique_ptr<char[]> buffer_;
  std::size_t begin_ = 0;  // what of the buffer was not handed out yet
  std::size_t end_ = 0;
};

}  // namespace uci

// The lines of a command's output, one at a time: what is printed never stands in memory whole.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace platform {

class OutputLines {
 public:
  // `visit` gets each line without its line feed, of a longer one the first `max_bytes`. Beyond kOutputMax bytes of
  // output (platform/process.h) nothing more is visited.
  OutputLines(std::size_t max_bytes, std::function<void(const std::string& line)> visit)
      : max_bytes_(max_bytes), visit_(std::move(visit)) {}

  // The next piece, cut anywhere. False when there was so much that the tool will not stop by itself.
  bool add(std::string_view piece);
  // The output is over: a last line may have no line feed.
  void finish();

 private:
  std::size_t max_bytes_;
  std::function<void(const std::string& line)> visit_;
  std::string line_;       // as much of it as has come
  bool has_line_ = false;  // which may be empty
  std::size_t read_ = 0;
};

}  // namespace platform

// Cutting of an output into lines as it comes.
#include "platform/output_lines.h"

#include <algorithm>

#include "platform/process.h"

namespace platform {

bool OutputLines::add(std::string_view piece) {
  const std::string_view kept = piece.substr(0, kOutputMax - std::min(read_, kOutputMax));
  read_ += piece.size();
  for (std::string_view rest = kept; !rest.empty();) {
    const std::size_t line_feed = rest.find('\n');
    has_line_ = true;
    line_ += rest.substr(0, line_feed).substr(0, max_bytes_ - line_.size());
    if (line_feed == std::string_view::npos) break;
    finish();
    rest.remove_prefix(line_feed + 1);
  }
  return read_ <= kMostRead;
}

void OutputLines::finish() {
  if (!has_line_) return;
  visit_(line_);
  line_.clear();
  has_line_ = false;
}

}  // namespace platform

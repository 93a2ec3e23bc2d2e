// Reading of a file line by line.
#include "platform/line_reader.h"

#include "platform/text.h"

namespace platform {

bool LineReader::next(std::string& line) {
  line = std::exchange(rest_, {});
  if (!file_) return false;
  int byte = 0;
  while (line.size() < max_bytes_ + kLongestCharacter && (byte = getc_unlocked(file_.get())) != EOF && byte != '\n') {
    line += static_cast<char>(byte);
  }
  if (byte == EOF && line.empty()) return false;
  const std::size_t end = cut_utf8(line, max_bytes_).size();
  rest_ = line.substr(end);
  line.resize(end);
  if (byte == '\n' && !rest_.empty()) std::ungetc('\n', file_.get());
  return true;
}

}  // namespace platform

// Small files and owning handles.
#include "platform/file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace platform {

FilePtr open_file(const char* path, const char* mode) {
  return FilePtr(std::fopen(path, (std::string(mode) + "e").c_str()));
}

UniqueFd& UniqueFd::operator=(UniqueFd&& other) noexcept {
  if (this != &other) reset(other.release());
  return *this;
}

int UniqueFd::release() { return std::exchange(descriptor_, -1); }

void UniqueFd::reset(int descriptor) {
  if (descriptor_ >= 0) close(descriptor_);
  descriptor_ = descriptor;
}

std::optional<std::string> read_file(const char* path, std::size_t max_bytes) {
  const UniqueFd file(open(path, O_RDONLY | O_CLOEXEC));
  if (!file.valid()) return std::nullopt;
  std::string content;
  std::array<char, 16384> piece{};
  while (content.size() < max_bytes) {
    const ssize_t got = read(file.get(), piece.data(), std::min(piece.size(), max_bytes - content.size()));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    if (got == 0) break;
    content.append(piece.data(), static_cast<std::size_t>(got));
  }
  return content;
}

bool write_file(const char* path, std::string_view content, unsigned int mode) {
  UniqueFd file(open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, static_cast<mode_t>(mode)));
  if (!file.valid()) return false;
  while (!content.empty()) {
    const ssize_t written = write(file.get(), content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return close(file.release()) == 0;
}

bool file_exists(const char* path) { return access(path, F_OK) == 0; }

}  // namespace platform

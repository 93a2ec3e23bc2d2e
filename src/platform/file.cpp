// Small files and owning handles.
#include "platform/file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace platform {
namespace {

// Makes a rename outlast a power cut. The file stands either way, so a folder that cannot be synced is no failure.
void sync_folder_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const UniqueFd opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.valid()) fsync(opened.get());
}

// A FIFO is no file: it would hold who opens it until somebody came to its other end. Nor is a socket.
UniqueFd open_at_once(const char* path, int flags, mode_t mode = 0) {
  UniqueFd file(open(path, flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, mode));
  struct stat status {};
  if (file.valid() && fstat(file.get(), &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode))) {
    file.reset();
    errno = ENXIO;
  }
  if (!file.valid() && errno == ENXIO) errno = EINVAL;  // what the kernel says to who would write
  if (file.valid()) fcntl(file.get(), F_SETFL, flags & O_APPEND);
  return file;
}

// Not a link's target, not somebody else's file, and no second name of one.
bool is_ours(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
         status.st_nlink == 1;
}

UniqueFd open_ours(const char* path, int flags) {
  UniqueFd file(open(path, flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (file.valid() && !is_ours(file.get())) {
    file.reset();
    errno = EPERM;
  }
  return file;
}

std::optional<std::string> read_all(const UniqueFd& file, std::size_t max_bytes) {
  if (!file.valid()) return std::nullopt;
  std::string content;
  std::array<char, 16384> piece;
  while (content.size() < max_bytes) {
    const ssize_t got = read(file.get(), piece.data(), std::min(piece.size(), max_bytes - content.size()));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    if (got == 0) break;
    content.append(piece.data(), static_cast<std::size_t>(got));
  }
  return content;
}

int flags_of(std::string_view mode) {
  if (mode == "r") return O_RDONLY;
  return O_WRONLY | O_CREAT | (mode == "a" ? O_APPEND : O_TRUNC);
}

}  // namespace

FilePtr open_file(const char* path, const char* mode) {
  UniqueFd file = open_at_once(path, flags_of(mode), 0666);
  FilePtr stream(file.valid() ? fdopen(file.get(), mode) : nullptr);
  if (stream) file.release();
  return stream;
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
  return read_all(open_at_once(path, O_RDONLY), max_bytes);
}

std::optional<std::string> read_own_file(const char* path, std::size_t max_bytes) {
  return read_all(open_ours(path, O_RDONLY), max_bytes);
}

bool is_own_file(const char* path) { return open_ours(path, O_RDONLY).valid(); }

bool write_file(const char* path, std::string_view content, unsigned int mode) {
  UniqueFd file(open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (file.valid()) {
    fchmod(file.get(), static_cast<mode_t>(mode));
  } else if (errno == EEXIST) {
    file = open_at_once(path, O_WRONLY | O_TRUNC);
  }
  return file.valid() && write_whole(file.get(), content) && close(file.release()) == 0;
}

bool write_whole(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(descriptor, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool replace_file(const std::string& path, std::string_view content, unsigned int mode) {
  std::string temporary = path + ".XXXXXX";
  UniqueFd file(mkostemp(temporary.data(), O_CLOEXEC));
  if (!file.valid()) return false;
  if (write_whole(file.get(), content) && fchmod(file.get(), static_cast<mode_t>(mode)) == 0 &&
      fsync(file.get()) == 0 && close(file.release()) == 0 && rename(temporary.c_str(), path.c_str()) == 0) {
    sync_folder_of(path);
    return true;
  }
  const int failure = errno;
  unlink(temporary.c_str());
  errno = failure;
  return false;
}

UniqueFd create_private_file(const std::string& path) {
  if (unlink(path.c_str()) != 0 && errno != ENOENT) return UniqueFd();
  return UniqueFd(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
}

UniqueFd append_private_file(const std::string& path) {
  UniqueFd file = open_ours(path.c_str(), O_WRONLY | O_APPEND);
  return file.valid() ? std::move(file) : create_private_file(path);
}

UniqueFd open_existing_for_writing(const char* path) { return open_at_once(path, O_WRONLY); }

bool close_file(UniqueFd file) { return close(file.release()) == 0; }

bool file_exists(const char* path) { return access(path, F_OK) == 0; }

std::optional<std::size_t> file_size(const char* path) {
  struct stat status {};
  if (stat(path, &status) != 0) return std::nullopt;
  return static_cast<std::size_t>(status.st_size);
}

bool set_file_mode(const char* path, unsigned int mode) { return chmod(path, static_cast<mode_t>(mode)) == 0; }

bool remove_file(const char* path) { return unlink(path) == 0; }

}  // namespace platform

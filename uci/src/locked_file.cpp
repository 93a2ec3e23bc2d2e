// Advisory locks and durable replacement of files.
#include "locked_file.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "elements.h"

namespace uci {
namespace {

[[noreturn]] void fail_io() { throw Failure{UCI_ERR_IO}; }

bool write_all(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

struct stat status_of(int descriptor) {
  struct stat status {};
  fstat(descriptor, &status);
  return status;
}

struct FreeText {
  void operator()(char* text) const noexcept { std::free(text); }
};

std::string resolved(const std::string& path) {
  const std::unique_ptr<char, FreeText> real(realpath(path.c_str(), nullptr));
  if (!real) fail_io();
  return real.get();
}

std::string folder_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

void sync_folder(const std::string& folder) {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);  // a file system that cannot sync a folder has nothing to sync
  close(descriptor);
}

// A new file beside the one that it will replace; gone again unless it was put there.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target) {
    const std::string folder = folder_of(target);
    path_ = folder + "." + target.substr(folder == "." ? 0 : folder.size()) + ".uci-XXXXXX";
    descriptor_ = mkostemp(path_.data(), O_CLOEXEC);
    if (descriptor_ < 0) fail_io();
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (descriptor_ >= 0) close(descriptor_);
    if (!path_.empty()) unlink(path_.c_str());
  }

  void fill(std::string_view content, const LockedFile& like) {
    if (!write_all(descriptor_, content)) fail_io();
    if (fchown(descriptor_, like.owner(), like.group()) != 0) errno = 0;  // only root may keep a foreign owner
    if (fchmod(descriptor_, like.mode()) != 0 || fsync(descriptor_) != 0) fail_io();
    if (close(std::exchange(descriptor_, -1)) != 0) fail_io();
  }

  void rename_to(const std::string& target) {
    if (rename(path_.c_str(), target.c_str()) != 0) fail_io();
    path_.clear();
  }

 private:
  std::string path_;
  int descriptor_ = -1;
};

}  // namespace

LockedFile::LockedFile(const std::string& path, Lock lock, bool create, mode_t mode) {
  const int access = create || lock == Lock::kExclusive ? O_RDWR : O_RDONLY;
  while (!try_open(path, lock, access | (create ? O_CREAT : 0) | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, mode)) continue;
}

// True when done, open or not; false when another file stands at the path by now.
bool LockedFile::try_open(const std::string& path, Lock lock, int flags, mode_t mode) {
  descriptor_ = ::open(path.c_str(), flags, mode);
  if (descriptor_ < 0) return true;
  while (flock(descriptor_, lock == Lock::kShared ? LOCK_SH : LOCK_EX) != 0 && errno == EINTR) continue;
  const struct stat held = status_of(descriptor_);
  struct stat standing {};
  if (stat(path.c_str(), &standing) == 0 && standing.st_ino == held.st_ino && standing.st_dev == held.st_dev)
    return true;
  close();
  return false;
}

LockedFile::LockedFile(LockedFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

LockedFile& LockedFile::operator=(LockedFile&& other) noexcept {
  if (this != &other) {
    close();
    descriptor_ = std::exchange(other.descriptor_, -1);
  }
  return *this;
}

LockedFile::~LockedFile() { close(); }

void LockedFile::close() {
  if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
}

bool LockedFile::is_regular() const { return S_ISREG(status_of(descriptor_).st_mode); }
mode_t LockedFile::mode() const { return status_of(descriptor_).st_mode & 07777; }
uid_t LockedFile::owner() const { return status_of(descriptor_).st_uid; }
gid_t LockedFile::group() const { return status_of(descriptor_).st_gid; }

std::FILE* LockedFile::read_stream() const {
  const int copy = fcntl(descriptor_, F_DUPFD_CLOEXEC, 0);
  if (copy < 0 || lseek(copy, 0, SEEK_SET) < 0) fail_io();
  std::FILE* stream = fdopen(copy, "r");
  if (stream == nullptr) fail_io();
  return stream;
}

void LockedFile::append(std::string_view text) {
  const off_t end = lseek(descriptor_, 0, SEEK_END);
  if (end < 0) fail_io();
  if (write_all(descriptor_, text)) return;
  if (ftruncate(descriptor_, end) != 0) errno = 0;
  fail_io();
}

void LockedFile::truncate() {
  if (ftruncate(descriptor_, 0) != 0) fail_io();
}

void LockedFile::rewrite(std::string_view text) {
  truncate();
  if (lseek(descriptor_, 0, SEEK_SET) < 0 || !write_all(descriptor_, text)) fail_io();
}

void replace_file(const std::string& path, std::string_view content, const LockedFile& old) {
  const std::string target = resolved(path);
  TemporaryFile file(target);
  file.fill(content, old);
  file.rename_to(target);
  sync_folder(folder_of(target));
}

}  // namespace uci

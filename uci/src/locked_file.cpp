// Advisory locks and durable replacement of files.
#include "locked_file.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
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

struct FreeText {
  void operator()(char* text) const noexcept { std::free(text); }
};

std::string resolved(const std::string& path) {
  const std::unique_ptr<char, FreeText> real(realpath(path.c_str(), nullptr));
  if (!real) fail_io();
  return real.get();
}

// With its slash. The path is an absolute one.
std::string folder_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return path.substr(0, slash + 1);
}

// The folder of a file that is to be replaced, opened before anything is done, so that only its sync can fail later.
class Folder {
 public:
  explicit Folder(const std::string& path) : descriptor_(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (descriptor_ < 0 && errno != EACCES) fail_io();  // one that may be written but not read cannot be synced
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  void sync() const {
    if (descriptor_ < 0 || fsync(descriptor_) == 0) return;
    const bool has_nothing_to_sync = errno == EINVAL || errno == ENOTSUP || errno == ENOSYS;  // the file system
    if (!has_nothing_to_sync) fail_io();
  }

 private:
  int descriptor_;
};

// A process that was killed while it wrote leaves its file behind. No commit takes so long that it could still come.
constexpr std::time_t kStaleAfter_s = 600;
constexpr std::string_view kTemporarySuffix = ".uci-XXXXXX";

void remove_stale(const std::string& folder, const std::string& prefix) {
  DIR* entries = opendir(folder.c_str());
  if (entries == nullptr) return;
  while (const dirent* entry = readdir(entries)) {
    const std::string_view name = entry->d_name;
    if (!name.starts_with(prefix) || name.size() != prefix.size() + 6) continue;
    struct stat status {};
    const int at = dirfd(entries);
    const bool is_stale = fstatat(at, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode) &&
                          status.st_mtime + kStaleAfter_s < std::time(nullptr);
    if (is_stale) unlinkat(at, entry->d_name, 0);
  }
  closedir(entries);
}

// A new file beside the one that it will replace; gone again unless it was put there.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target) {
    const std::string folder = folder_of(target);
    std::string name = ".";
    name.append(target, folder.size()).append(kTemporarySuffix);
    remove_stale(folder, name.substr(0, name.size() - 6));
    path_ = folder + name;
    descriptor_ = mkostemp(path_.data(), O_CLOEXEC);
    if (descriptor_ < 0) fail_io();
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (descriptor_ >= 0) close(descriptor_);
    if (!path_.empty()) unlink(path_.c_str());
  }

  void be_like(const LockedFile& other) {
    if (fchown(descriptor_, other.owner(), other.group()) != 0) errno = 0;  // only root may keep a foreign owner
    if (fchmod(descriptor_, other.mode()) != 0) fail_io();
  }

  void fill(const WriteText& write) {
    write([this](std::string_view text) {
      if (!write_all(descriptor_, text)) fail_io();
    });
    if (fsync(descriptor_) != 0) fail_io();
    if (close(std::exchange(descriptor_, -1)) != 0) fail_io();
  }

  void rename_to(const std::string& target) {
    if (::rename(path_.c_str(), target.c_str()) != 0) fail_io();
    path_.clear();
  }

  // False when there is a file already.
  bool link_to(const std::string& target) {
    if (link(path_.c_str(), target.c_str()) == 0) return true;
    if (errno == EEXIST) return false;
    if (errno != EPERM && errno != ENOTSUP && errno != ENOSYS) fail_io();
    rename_to(target);  // a file system without hard links
    return true;
  }

 private:
  std::string path_;
  int descriptor_ = -1;
};

}  // namespace

FileId id_of(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? FileId{status.st_dev, status.st_ino} : FileId{};
}

constexpr int kOpenFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

LockedFile::LockedFile(const std::string& path, Lock lock, FileId other) {
  const int access = lock == Lock::kExclusive ? O_RDWR : O_RDONLY;
  while (!try_open(path, lock, access | kOpenFlags, 0, other)) continue;
}

LockedFile LockedFile::make(const std::string& path, mode_t mode, FileId other) {
  LockedFile file;
  while (!file.try_open(path, Lock::kExclusive, O_RDWR | O_CREAT | kOpenFlags, mode, other)) continue;
  return file;
}

// True when done, open or not; false when another file stands at the path by now.
bool LockedFile::try_open(const std::string& path, Lock lock, int flags, mode_t mode, FileId other) {
  descriptor_ = ::open(path.c_str(), flags, mode);
  error_ = descriptor_ < 0 ? errno : 0;
  if (descriptor_ < 0) return true;
  if (fstat(descriptor_, &status_) != 0 || (other.exists() && id() == other) || !lock_it(lock)) {
    close();
    fail_io();
  }
  // What stands at the path now, and how large it is since the lock is held.
  const FileId held = id();
  const bool is_current = stat(path.c_str(), &status_) == 0 && id() == held;
  if (!is_current) close();
  return is_current;
}

bool LockedFile::lock_it(Lock lock) const {
  while (flock(descriptor_, lock == Lock::kShared ? LOCK_SH : LOCK_EX) != 0) {
    if (errno == EINTR) continue;
    return lock == Lock::kShared;  // a file is replaced as a whole, so it can be read without
  }
  return true;
}

LockedFile::LockedFile(LockedFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), error_(other.error_), status_(other.status_) {}

LockedFile& LockedFile::operator=(LockedFile&& other) noexcept {
  if (this != &other) {
    close();
    descriptor_ = std::exchange(other.descriptor_, -1);
    error_ = other.error_;
    status_ = other.status_;
  }
  return *this;
}

LockedFile::~LockedFile() { close(); }

void LockedFile::close() {
  if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
}

std::size_t LockedFile::read(char* place, std::size_t size, off_t offset) const {
  while (true) {
    const ssize_t count = pread(descriptor_, place, size, offset);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) fail_io();
  }
}

void LockedFile::append_lines(std::string_view text) {
  const off_t end = status_.st_size;
  if (lseek(descriptor_, end, SEEK_SET) < 0) fail_io();
  char last = '\n';
  if (end > 0 && pread(descriptor_, &last, 1, end - 1) != 1) fail_io();
  if ((last == '\n' || write_all(descriptor_, "\n")) && write_all(descriptor_, text)) return;
  if (ftruncate(descriptor_, end) != 0) errno = 0;
  fail_io();
}

void LockedFile::truncate() {
  if (ftruncate(descriptor_, 0) != 0) fail_io();
}

void replace_file(const std::string& path, const WriteText& write, const LockedFile& old) {
  const std::string target = resolved(path);
  const Folder folder(folder_of(target));
  TemporaryFile file(target);
  file.be_like(old);
  file.fill(write);
  file.rename_to(target);
  folder.sync();
}

bool create_file(const std::string& path, const WriteText& write) {
  struct stat status {};
  if (lstat(path.c_str(), &status) == 0) return false;
  const std::size_t slash = path.rfind('/');
  const std::string target = resolved(slash == std::string::npos ? "." : path.substr(0, slash + 1)) + "/" +
                             path.substr(slash == std::string::npos ? 0 : slash + 1);
  const Folder folder(folder_of(target));
  TemporaryFile file(target);
  file.fill(write);
  if (!file.link_to(target)) return false;
  folder.sync();
  return true;
}

}  // namespace uci

// Files under advisory locks, and their atomic replacement.
#pragma once

#include <cerrno>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/types.h>

namespace uci {

// Which file it is, whatever it is called.
struct FileId {
  dev_t device = 0;
  ino_t inode = 0;
  [[nodiscard]] bool exists() const { return inode != 0; }
  bool operator==(const FileId&) const = default;
};
FileId id_of(const std::string& path);

// Which file it is, and in which state.
struct FileState {
  FileId id;
  off_t size = 0;
  std::time_t modified_s = 0;
  long modified_ns = 0;
  bool operator==(const FileState&) const = default;
};

enum class Lock { kShared, kExclusive };

// A file opened and locked. After waiting for the lock the path is opened again when another process has put a new
// file there meanwhile, so the holder of a lock never looks at a replaced file.
class LockedFile {
 public:
  LockedFile() = default;
  // Not open afterwards when that failed. Throws Failure{UCI_ERR_IO} when the file system has no exclusive lock to
  // give, and when the file is `other`, on which the caller holds a lock, or will.
  LockedFile(const std::string& path, Lock lock, FileId other = {});
  // The same, exclusively; a missing file is made with `mode`.
  static LockedFile make(const std::string& path, mode_t mode, FileId other = {});
  LockedFile(LockedFile&& other) noexcept;
  LockedFile& operator=(LockedFile&& other) noexcept;
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;
  ~LockedFile();

  [[nodiscard]] bool is_open() const { return descriptor_ >= 0; }
  // True when it is not open because there is no such file.
  [[nodiscard]] bool is_missing() const { return !is_open() && (error_ == ENOENT || error_ == ENOTDIR); }
  // True for an open file that is a plain file, not a folder or a device.
  [[nodiscard]] bool is_regular() const { return is_open() && S_ISREG(status_.st_mode); }
  // In bytes, when it was locked.
  [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(status_.st_size); }
  [[nodiscard]] FileId id() const { return is_open() ? FileId{status_.st_dev, status_.st_ino} : FileId{}; }
  [[nodiscard]] FileState state() const {  // when it was locked
    return {id(), status_.st_size, status_.st_mtim.tv_sec, status_.st_mtim.tv_nsec};
  }
  [[nodiscard]] mode_t mode() const { return status_.st_mode & 07777; }
  [[nodiscard]] uid_t owner() const { return status_.st_uid; }
  [[nodiscard]] gid_t group() const { return status_.st_gid; }

  // What stands at `offset`, up to `size` bytes; their number, 0 at the end. Throws Failure{UCI_ERR_IO}.
  std::size_t read(char* place, std::size_t size, off_t offset) const;
  // Appends all of `text`, or nothing: what was written of it is taken back. It begins on a line of its own also when
  // the file's last line was never ended. Throws Failure{UCI_ERR_IO}.
  void append_lines(std::string_view text);
  // Empties the file. Throws Failure{UCI_ERR_IO}.
  void truncate();

 private:
  bool try_open(const std::string& path, Lock lock, int flags, mode_t mode, FileId other);
  [[nodiscard]] bool lock_it(Lock lock) const;
  void close();
  int descriptor_ = -1;
  int error_ = 0;  // why it is not open
  struct stat status_ {};
};

// Takes a text piece by piece.
using PutText = std::function<void(std::string_view)>;
// Gives a text piece by piece.
using WriteText = std::function<void(const PutText& put)>;

// Puts a new file with this content in the place of `path` (of its target, for a symbolic link): written beside it,
// synced, renamed, the folder synced. `old` is the locked file that is replaced: its mode, and its owner where that is
// allowed, are kept. Throws Failure{UCI_ERR_IO}; the file is the old one then, or, when only the sync of the folder
// failed, the new one.
void replace_file(const std::string& path, const WriteText& write, const LockedFile& old);

// Puts a new file there, whole or not at all, readable for its owner only. False, and nothing done, when there is a
// file already. Throws Failure{UCI_ERR_IO}.
bool create_file(const std::string& path, const WriteText& write);

}  // namespace uci

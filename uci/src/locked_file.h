// Files under advisory locks, and their atomic replacement.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace uci {

enum class Lock { kShared, kExclusive };

// A file opened and locked. After waiting for the lock the path is opened again when another process has put a new
// file there meanwhile, so the holder of a lock never looks at a replaced file.
class LockedFile {
 public:
  LockedFile() = default;
  // `create` makes a missing file with `mode`. Not open() afterwards when that failed; errno tells why.
  LockedFile(const std::string& path, Lock lock, bool create = false, mode_t mode = 0600);
  LockedFile(LockedFile&& other) noexcept;
  LockedFile& operator=(LockedFile&& other) noexcept;
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;
  ~LockedFile();

  [[nodiscard]] bool is_open() const { return descriptor_ >= 0; }
  [[nodiscard]] bool is_regular() const;
  [[nodiscard]] mode_t mode() const;
  [[nodiscard]] uid_t owner() const;
  [[nodiscard]] gid_t group() const;

  // A stream on the file's beginning; the caller closes it. Throws Failure{UCI_ERR_IO}.
  [[nodiscard]] std::FILE* read_stream() const;
  // Appends all of `text`, or nothing: what was written of it is taken back. Throws Failure{UCI_ERR_IO}.
  void append(std::string_view text);
  // Empties the file. Throws Failure{UCI_ERR_IO}.
  void truncate();
  // Replaces the content. Throws Failure{UCI_ERR_IO}.
  void rewrite(std::string_view text);

 private:
  bool try_open(const std::string& path, Lock lock, int flags, mode_t mode);
  void close();
  int descriptor_ = -1;
};

// Puts a new file with this content in the place of `path` (of its target, for a symbolic link): written beside it,
// synced, renamed, the folder synced. `old` is the locked file that is replaced: its mode, and its owner where that is
// allowed, are kept. Throws Failure{UCI_ERR_IO} and leaves the old file as it was.
void replace_file(const std::string& path, std::string_view content, const LockedFile& old);

}  // namespace uci

// Owning file handles and the reading and writing of small files.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

struct CloseFile {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, CloseFile>;

// fopen with "r", "w" or "a", close-on-exec. A FIFO or a socket cannot be opened (EINVAL): it would hold the caller.
FilePtr open_file(const char* path, const char* mode);

// Owner of a descriptor; -1 owns nothing.
class UniqueFd {
 public:
  UniqueFd() = default;
  explicit UniqueFd(int descriptor) : descriptor_(descriptor) {}
  UniqueFd(UniqueFd&& other) noexcept : descriptor_(other.release()) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept;
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;
  ~UniqueFd() { reset(); }

  [[nodiscard]] int get() const { return descriptor_; }
  [[nodiscard]] bool valid() const { return descriptor_ >= 0; }
  int release();
  void reset(int descriptor = -1);

 private:
  int descriptor_ = -1;
};

// The whole file, or nullopt when it is a FIFO or cannot be opened or read. At most `max_bytes` are read.
std::optional<std::string> read_file(const char* path, std::size_t max_bytes = static_cast<std::size_t>(-1));

// As read_file, of a file of our own only: nullopt, with errno EPERM or ELOOP, for a link, somebody else's file, a
// second name of a file. What others may put into /tmp is then no message of a tool that we started.
std::optional<std::string> read_own_file(const char* path, std::size_t max_bytes = static_cast<std::size_t>(-1));

// Whether read_own_file could read it. In a sticky folder such as /tmp nobody but us can then put something else there.
bool is_own_file(const char* path);

// Replaces the content of the file (made with `mode`, whatever the umask, when missing). False, with errno, on any
// failed step.
bool write_file(const char* path, std::string_view content, unsigned int mode = 0644);

// Replaces the file by one with this content and mode, whatever the umask: a temporary file in the same folder, fsync,
// rename, fsync of the folder. A reader, or a power cut, meets the old content or the new one, never a part. A symbolic
// link of that name is itself replaced. False, with errno, on any failed step: the old file is then as it was, and no
// temporary file is left.
bool replace_file(const std::string& path, std::string_view content, unsigned int mode = 0644);

// Makes `path` anew, empty, mode 0600, opened for writing: what was there is removed, never written through (a planted
// link, a FIFO, a file of another owner). Invalid, with errno, when it cannot be made.
UniqueFd create_private_file(const std::string& path);

// Opens a file of our own, of that name, for appending; anything else is replaced by create_private_file().
UniqueFd append_private_file(const std::string& path);

// Opens a file that exists for writing, its content left as it is: a node of the kernel's. Invalid, with errno, when
// it cannot be opened.
UniqueFd open_existing_for_writing(const char* path);

// Writes all of `content`. False, with errno, when any of it could not be written.
bool write_whole(int descriptor, std::string_view content);

// Closes it. False, with errno, when what was written to it cannot be kept.
bool close_file(UniqueFd file);

// The file exists (access F_OK).
bool file_exists(const char* path);
// The size of a file in bytes; nullopt, with errno, when it cannot be told.
std::optional<std::size_t> file_size(const char* path);
// Gives the file this mode, whatever the umask. False, with errno, on failure.
bool set_file_mode(const char* path, unsigned int mode);
// Removes the file (a link itself, not what it points to). False, with errno, when there is none or it stays.
bool remove_file(const char* path);

}  // namespace platform

// Writing and checking of the backup file's trailer.
#include "system/backup_file.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <utility>

#include "platform/file.h"
#include "platform/log.h"
#include "platform/process.h"
#include "unit/brand.h"

namespace {

bool append_text(const char* path, std::string_view text) {
  platform::FilePtr file = platform::open_file(path, "a");
  if (!file) return false;
  const bool written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
  return std::fclose(file.release()) == 0 && written;
}

// `size` bytes that begin `from_end` bytes before the end of the file. False, and a message on standard error, when
// there are none.
bool read_trailer(const char* path, long from_end, std::size_t size, std::string& text) {
  const platform::FilePtr file = platform::open_file(path, "r");
  if (!file) {
    std::perror("Failed to open file");
    return false;
  }
  text.resize(size);
  if (std::fseek(file.get(), -from_end, SEEK_END) != 0 || std::fread(text.data(), 1, size, file.get()) != size) {
    std::fputs("Failed to read file", stderr);
    return false;
  }
  return true;
}

// The bytes of the file before its trailer; nullopt when there are none.
std::optional<std::size_t> archive_size(const char* path) {
  const std::optional<std::size_t> size = platform::file_size(path);
  return size && *size > kTrailer ? std::optional(*size - kTrailer) : std::nullopt;
}

bool copy_bytes(std::FILE* from, int to, std::size_t count) {
  std::array<char, 16384> piece{};
  while (count > 0) {
    const std::size_t wanted = std::min(count, piece.size());
    if (std::fread(piece.data(), 1, wanted, from) != wanted) return false;
    if (!platform::write_whole(to, std::string_view(piece.data(), wanted))) return false;
    count -= wanted;
  }
  return true;
}

bool copy_archive(const char* upload, const char* archive) {
  const std::optional<std::size_t> size = archive_size(upload);
  const platform::FilePtr from = platform::open_file(upload, "r");
  platform::UniqueFd to = platform::create_private_file(archive);
  if (!size || !from || !to.valid() || !copy_bytes(from.get(), to.get(), *size)) return false;
  return platform::close_file(std::move(to));
}

}  // namespace

int get_file_md5(const char* path, std::string& md5) {
  const platform::ProcessResult result = platform::run_shell(std::string("md5sum ") + path);
  if (!result.started) std::perror("Failed to open pipe");
  if (result.output.size() < kTrailerMd5) return -1;
  md5 = result.output.substr(0, kTrailerMd5);
  return 0;
}

int append_md5_to_file(const char* path) {
  std::string md5;
  return get_file_md5(path, md5) == 0 && append_text(path, md5) ? 0 : -1;
}

int append_device_id_to_file(const char* path) {
  const std::string_view id = unit::brand().device_id;
  return id.empty() || append_text(path, id) ? 0 : -1;
}

int read_trailer_md5(const char* path, std::string& md5) {
  return read_trailer(path, kTrailer, kTrailerMd5, md5) ? 0 : -1;
}

int read_trailer_id(const char* path, std::string& id) {
  return read_trailer(path, kTrailerId, kTrailerId, id) ? 0 : -1;
}

bool split_backup_file(const char* upload, const char* archive) {
  if (copy_archive(upload, archive)) return true;
  platform::remove_file(archive);
  return false;
}

int checkBackFileId() {
  const std::string_view own = unit::brand().device_id;
  std::string id;
  if (own.empty()) return 0;
  const bool equal = read_trailer_id(kUploadPath, id) == 0 && id == own;
  log_debug("%s", equal ? "id is equal\n" : "id is not equal\n");
  return equal ? 1 : 0;
}

int checkBackFileMd5() {
  std::string stated;
  std::string actual;
  if (read_trailer_md5(kUploadPath, stated) == 0 && get_file_md5(kArchivePath, actual) == 0 && stated == actual) {
    log_debug("md5sum is equal\n");
    platform::remove_file(kUploadPath);
    return 1;
  }
  log_error("md5sum is not equal\n");
  platform::remove_file(kArchivePath);
  return 0;
}

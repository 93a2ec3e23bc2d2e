// Any bytes as an uploaded backup: it is split into archive and trailer, which together are what came.
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>

#include "platform/file.h"
#include "require.h"
#include "system/backup_file.h"

namespace {

// A folder of this process's own.
class Folder {
 public:
  Folder() { std::filesystem::create_directory(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  [[nodiscard]] std::string file(const char* name) const { return path_ / name; }

 private:
  std::filesystem::path path_ =
      std::filesystem::temp_directory_path() / ("backup-trailer-fuzzer-" + std::to_string(getpid()));
};

std::string trailer_of(const std::string& upload) {
  std::string md5;
  std::string id;
  fuzzing::require(read_trailer_md5(upload.c_str(), md5) == 0 && md5.size() == kTrailerMd5, "no MD5");
  fuzzing::require(read_trailer_id(upload.c_str(), id) == 0 && id.size() == kTrailerId, "no id");
  return md5 + id;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Folder folder;
  static const std::string upload = folder.file("upload");
  static const std::string archive = folder.file("archive");
  const std::string content(fuzzing::text_of(data, size));
  fuzzing::require(platform::write_file(upload.c_str(), content), "no upload");

  const bool is_split = split_backup_file(upload.c_str(), archive.c_str());
  fuzzing::require(is_split == (size > kTrailer), "split without an archive, or not split with one");
  fuzzing::require(is_split == platform::file_exists(archive.c_str()), "an archive of nothing");
  if (is_split) {
    const std::optional<std::string> kept = platform::read_file(archive.c_str());
    fuzzing::require(kept && *kept + trailer_of(upload) == content, "archive and trailer are not what came");
  }
  return 0;
}

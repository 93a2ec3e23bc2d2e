// Finding, applying, appending to and filtering of the delta files of a package.
#include "delta_files.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "delta.h"

namespace uci {
namespace {

constexpr mode_t kPermissions = 0777;

std::string delta_path(std::string_view directory, const uci_package& package) {
  return std::string(directory) + "/" + package.e.name;
}

int apply_delta_file(const LockedFile& file, uci_package& package) {
  if (!file.is_regular()) return 0;
  FileLines lines(file);
  return apply_records(lines, package);
}

struct DeltaFile {
  std::string path;
  FileId id;
};

// The delta files that there are, in the order in which they apply. A file that is met under several names applies
// once, in its last place, and the package file, whose lock is held and would be waited for, is none.
std::vector<DeltaFile> find_delta_files(const uci_context& context, const uci_package& package, FileId package_file) {
  std::vector<DeltaFile> files;
  for (const uci_list* node = context.delta_path.prev; node != &context.delta_path; node = node->prev) {
    std::string path = delta_path(list_to_element(node)->name, package);
    const FileId id = id_of(path);
    const bool is_met = std::ranges::find(files, id, &DeltaFile::id) != files.end();
    if (id.exists() && id != package_file && !is_met) files.push_back({std::move(path), id});
  }
  std::ranges::reverse(files);
  return files;
}

// The savedir is made when it is missing, with the mode of the package folder.
void make_savedir(const uci_context& context) {
  struct stat status {};
  if (stat(context.savedir, &status) == 0) return;
  const mode_t mode = stat(context.confdir, &status) == 0 ? status.st_mode & kPermissions : mode_t{UCI_DIRMODE};
  mkdir(context.savedir, mode);
}

bool is_reverted(const Record& record, const uci_ptr& ptr) {
  if (ptr.section == nullptr) return true;
  if (std::strcmp(record.section, ptr.section) != 0) return false;
  return ptr.option == nullptr || (record.option != nullptr && std::strcmp(record.option, ptr.option) == 0);
}

}  // namespace

int apply_delta_files(uci_context& context, uci_package& package, const LockedFile& package_file,
                      const LockedFile* savedir_file) {
  int count = 0;
  for (const DeltaFile& file : find_delta_files(context, package, package_file.id())) {
    if (savedir_file != nullptr && file.id == savedir_file->id()) {
      count += apply_delta_file(*savedir_file, package);
    } else {
      count += apply_delta_file(LockedFile(file.path, Lock::kShared), package);
    }
  }
  return count;
}

LockedFile open_delta_file(const uci_context& context, const uci_package& package) {
  const std::string path = delta_path(context.savedir, package);
  // A savedir that is the package folder: no changes into the package file, no waiting for the own lock.
  const FileId package_file = id_of(package.path);
  LockedFile standing(path, Lock::kExclusive, package_file);
  // What is staged there and cannot be read must not be passed over.
  if (!standing.is_missing() && !standing.is_regular()) throw Failure{UCI_ERR_IO};
  if (standing.is_open() || uci_list_empty(&package.delta)) return standing;
  make_savedir(context);
  struct stat status {};
  const std::string config = std::string(context.confdir) + "/" + package.e.name;
  const mode_t mode = stat(config.c_str(), &status) == 0 ? status.st_mode & kPermissions : mode_t{UCI_FILEMODE};
  LockedFile file = LockedFile::make(path, mode, package_file);
  if (!file.is_regular()) throw Failure{UCI_ERR_IO};
  return file;
}

void append_pending(LockedFile& delta_file, uci_package& package) {
  std::string text;
  uci_element* element = nullptr;
  uci_foreach_element(&package.delta, element) text += format_record(package.e.name, record_of(*uci_to_delta(element)));
  if (text.empty()) return;
  delta_file.append_lines(text);
  free_deltas(package.delta);
}

void filter_delta_file(uci_context& context, const uci_package& package, const uci_ptr& ptr) {
  const std::string path = delta_path(context.savedir, package);
  const LockedFile file(path, Lock::kExclusive);
  if (file.is_missing()) return;
  if (!file.is_regular()) throw Failure{UCI_ERR_IO};
  std::string kept;
  FileLines lines(file);
  read_records(lines, package.e.name, [&](const Record& record) {
    if (!is_reverted(record, ptr)) kept += format_record(package.e.name, record);
  });
  if (file.size() > 0)
    replace_file(
        path, [&](const PutText& put) { put(kept); }, file);
}

}  // namespace uci

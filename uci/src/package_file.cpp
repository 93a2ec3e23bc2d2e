// Loading, staging and committing of packages, all under the locks that the platform's other tools take.
#include "package_file.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unordered_map>
#include <vector>

#include "context.h"
#include "delta.h"
#include "locked_file.h"
#include "package_parser.h"
#include "package_text.h"
#include "tuple.h"

namespace uci {
namespace {

struct FreePackage {
  void operator()(uci_package* package) const noexcept { free_package(package); }
};
using PackagePtr = std::unique_ptr<uci_package, FreePackage>;

constexpr mode_t kPermissions = 0777;

bool is_path(std::string_view name) { return name.starts_with('/') || name.starts_with("./"); }

// A name that climbs out of its folder is no package's. Only a path says openly that it may be any file.
bool leads_upwards(std::string_view name) {
  return name.find("/../") != std::string_view::npos || name.ends_with("/..");
}

struct Location {
  std::string path;
  std::string name;
  bool has_delta = true;
  bool uses_conf2 = false;
};

Location locate(const uci_context& context, std::string_view name) {
  if (!is_type(name)) throw Failure{UCI_ERR_INVAL};
  if (is_path(name)) return {std::string(name), std::string(name.substr(name.rfind('/') + 1)), false, false};
  if (name.starts_with('.') || leads_upwards(name)) throw Failure{UCI_ERR_NOTFOUND};
  const std::string conf2 = context.conf2dir == nullptr ? "" : std::string(context.conf2dir) + "/" + std::string(name);
  struct stat status {};
  if (!conf2.empty() && stat(conf2.c_str(), &status) == 0) return {conf2, std::string(name), true, true};
  return {std::string(context.confdir) + "/" + std::string(name), std::string(name), true, false};
}

void require_readable(const LockedFile& file) {
  if (!file.is_open() && !file.is_missing()) throw Failure{UCI_ERR_IO};
  if (!file.is_regular()) throw Failure{UCI_ERR_NOTFOUND};
}

std::string delta_path(std::string_view directory, const uci_package& package) {
  return std::string(directory) + "/" + package.e.name;
}

PackagePtr parse_file(uci_context& context, const Location& location, const LockedFile& file) {
  PackagePtr package(new_package(context, location.name));
  const std::string text = file.read();
  WordReader words(text);
  parse_package(context, words, *package);
  replace_text(package->path, location.path);
  package->has_delta = location.has_delta;
  package->uses_conf2 = location.uses_conf2;
  return package;
}

int apply_delta_file(const LockedFile& file, uci_package& package) {
  if (!file.is_regular()) return 0;
  return apply_records(file.read(), package);
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

// Applies the delta files of all folders in their order. The one of the savedir is given when it is locked already.
int apply_delta_files(uci_context& context, uci_package& package, const LockedFile& package_file,
                      const LockedFile* savedir_file) {
  const FileId locked = savedir_file != nullptr ? savedir_file->id() : FileId{};
  int count = 0;
  for (const DeltaFile& file : find_delta_files(context, package, package_file.id())) {
    if (file.id == locked) {
      count += apply_delta_file(*savedir_file, package);
    } else {
      count += apply_delta_file(LockedFile(file.path, Lock::kShared), package);
    }
  }
  return count;
}

// The package as it stands in its file, with what is staged for it; in no context yet.
PackagePtr read_package(uci_context& context, const Location& location) {
  const LockedFile file(location.path, Lock::kShared);
  require_readable(file);
  PackagePtr package = parse_file(context, location, file);
  if (package->has_delta) apply_delta_files(context, *package, file, nullptr);
  return package;
}

// The savedir is made when it is missing, with the mode of the package folder.
void make_savedir(const uci_context& context) {
  struct stat status {};
  if (stat(context.savedir, &status) == 0) return;
  const mode_t mode = stat(context.confdir, &status) == 0 ? status.st_mode & kPermissions : mode_t{UCI_DIRMODE};
  mkdir(context.savedir, mode);
}

// The delta file of the savedir, made when there is something to put into it. Not open when there is none.
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

void link_package(uci_context& context, PackagePtr& package) { list_add_tail(context.root, package.release()->e.list); }

// The file that a commit of this package goes to, locked. A vanished one is made, empty.
LockedFile open_for_commit(const std::string& path) {
  LockedFile file = LockedFile::make(path, UCI_FILEMODE);
  if (!file.is_regular()) throw Failure{UCI_ERR_IO};
  return file;
}

// What another program made of the elements, or a fault in one, must not make a file that cannot be read again.
void require_writable(uci_package& package) {
  std::unordered_map<std::string_view, std::string_view> types;
  uci_element* element = nullptr;
  uci_foreach_element(&package.sections, element) {
    const uci_section& section = *uci_to_section(element);
    const bool named = !section.anonymous;
    const auto [known, is_new] = types.try_emplace(named ? section.e.name : "", section.type);
    const bool is_sound =
        is_type(section.type) && (!named || (is_name(section.e.name) && known->second == section.type));
    if (!is_sound) throw Failure{UCI_ERR_INVAL};
    const uci_element* option = nullptr;
    uci_foreach_element(&section.options, option) {
      if (!is_name(option->name)) throw Failure{UCI_ERR_INVAL};
    }
  }
}

void write_package(uci_package& package, const LockedFile& file) {
  require_writable(package);
  replace_file(package.path, format_package(package, false), file);
}

// Re-reads the file under its lock, applies all that is staged, writes it, and only then empties the delta file.
void commit_with_delta(uci_context& context, uci_package*& handle) {
  const LockedFile file = open_for_commit(handle->path);
  LockedFile delta_file = open_delta_file(context, *handle);
  append_pending(delta_file, *handle);
  const Location location{handle->path, handle->e.name, handle->has_delta, handle->uses_conf2};
  PackagePtr fresh = parse_file(context, location, file);
  const bool has_changes = apply_delta_files(context, *fresh, file, &delta_file) > 0;
  // From here on the caller's package is the new one, whatever the disk says: two of them and the text would be much.
  free_package(handle);
  handle = fresh.get();
  link_package(context, fresh);
  if (!has_changes) return;
  write_package(*handle, file);
  if (delta_file.is_open()) delta_file.truncate();
  free_deltas(handle->saved_delta);
}

// The caller's own elements, with what is staged applied on top.
void commit_overwriting(uci_context& context, uci_package& package) {
  require_writable(package);
  const LockedFile file = open_for_commit(package.path);
  LockedFile delta_file = open_delta_file(context, package);
  if (apply_delta_files(context, package, file, &delta_file) == 0) return;
  write_package(package, file);
  if (delta_file.is_open()) delta_file.truncate();
  free_deltas(package.delta);
  free_deltas(package.saved_delta);
}

void commit_from_memory(uci_package& package) {
  write_package(package, open_for_commit(package.path));
  free_deltas(package.delta);
}

// A package without a file gets one. A new file never stands there empty, not even when this process is killed.
void commit_imported(const uci_context& context, uci_package& package) {
  const std::string path = std::string(context.confdir) + "/" + package.e.name;
  require_writable(package);
  const std::string text = format_package(package, false);
  if (!create_file(path, text)) replace_file(path, text, open_for_commit(path));
  replace_text(package.path, path);
}

void commit(uci_context& context, uci_package*& handle, bool overwrite) {
  if (handle->path == nullptr) {
    if (!overwrite) throw Failure{UCI_ERR_INVAL};
    commit_imported(context, *handle);
  } else if (!handle->has_delta) {
    commit_from_memory(*handle);
  } else if (overwrite) {
    commit_overwriting(context, *handle);
  } else {
    commit_with_delta(context, handle);
  }
}

bool is_reverted(const Record& record, const uci_ptr& ptr) {
  if (ptr.section == nullptr) return true;
  if (std::strcmp(record.section, ptr.section) != 0) return false;
  return ptr.option == nullptr || (record.option != nullptr && std::strcmp(record.option, ptr.option) == 0);
}

// Keeps the records that are not reverted. What else stands in the file could never apply, and goes.
void filter_delta_file(uci_context& context, const uci_package& package, const uci_ptr& ptr) {
  const std::string path = delta_path(context.savedir, package);
  const LockedFile file(path, Lock::kExclusive);
  if (file.is_missing()) return;
  if (!file.is_regular()) throw Failure{UCI_ERR_IO};
  std::string kept;
  read_records(file.read(), package.e.name, [&](const Record& record) {
    if (!is_reverted(record, ptr)) kept += format_record(package.e.name, record);
  });
  if (!file.is_empty()) replace_file(path, kept, file);
}

void revert(uci_context& context, uci_ptr& ptr) {
  resolve(context, ptr);
  uci_package* package = ptr.p;
  if (!package->has_delta) throw Failure{UCI_ERR_INVAL};
  // The names may point into what is unloaded below.
  const std::optional<std::string> section = ptr.section ? std::optional<std::string>(ptr.section) : std::nullopt;
  const std::optional<std::string> option = ptr.option ? std::optional<std::string>(ptr.option) : std::nullopt;
  uci_ptr names{};
  names.section = section ? section->c_str() : nullptr;
  names.option = option ? option->c_str() : nullptr;
  save_package(context, *package);
  filter_delta_file(context, *package, names);
  PackagePtr fresh = read_package(context, locate(context, package->e.name));
  free_package(package);
  ptr.p = fresh.get();
  link_package(context, fresh);
}

}  // namespace

uci_package* load_package(uci_context& context, const char* name) {
  const Location location = locate(context, name);
  if (find(context.root, location.name.c_str()) != nullptr) throw Failure{UCI_ERR_DUPLICATE};
  PackagePtr package = read_package(context, location);
  uci_package* loaded = package.get();
  link_package(context, package);
  return loaded;
}

void save_package(uci_context& context, uci_package& package) {
  if (package.path == nullptr) throw Failure{UCI_ERR_INVAL};
  if (!package.has_delta) return commit_from_memory(package);
  if (uci_list_empty(&package.delta)) return;
  LockedFile delta_file = open_delta_file(context, package);
  append_pending(delta_file, package);
}

}  // namespace uci

using uci::Failure;
using uci::guarded;

extern "C" {

int uci_load(uci_context* ctx, const char* name, uci_package** package) {
  return guarded(ctx, [&](uci_context& context) {
    if (name == nullptr) throw Failure{UCI_ERR_INVAL};
    uci_package* loaded = uci::load_package(context, name);
    if (package != nullptr) *package = loaded;
  });
}

int uci_unload(uci_context* ctx, uci_package* p) {
  return guarded(ctx, [&](uci_context&) {
    if (p == nullptr) throw Failure{UCI_ERR_INVAL};
    uci::free_package(p);
  });
}

int uci_save(uci_context* ctx, uci_package* p) {
  return guarded(ctx, [&](uci_context& context) {
    if (p == nullptr) throw Failure{UCI_ERR_INVAL};
    uci::save_package(context, *p);
  });
}

int uci_commit(uci_context* ctx, uci_package** p, bool overwrite) {
  return guarded(ctx, [&](uci_context& context) {
    if (p == nullptr || *p == nullptr) throw Failure{UCI_ERR_INVAL};
    uci::commit(context, *p, overwrite);
  });
}

int uci_revert(uci_context* ctx, uci_ptr* ptr) {
  return guarded(ctx, [&](uci_context& context) {
    if (ptr == nullptr) throw Failure{UCI_ERR_INVAL};
    uci::revert(context, *ptr);
  });
}

}  // extern "C"

// Loading, staging and committing of packages, all under the locks that the platform's other tools take.
#include "package_file.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unordered_map>
#include <vector>

#include "context.h"
#include "delta_files.h"
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

bool is_strict(const uci_context& context) { return (context.flags & UCI_FLAG_STRICT) != 0; }

// Fills the package from its file and with what is staged for it; the number of staged changes that applied. When this
// throws, the package is not whole.
int fill_package(uci_context& context, uci_package& package, const LockedFile& file, const LockedFile* savedir_file) {
  PackageNotes& notes = notes_of(package);
  notes = {is_strict(context) ? file.state() : FileState{}, false};
  clear(package);
  FileLines lines(file);
  WordReader words(lines);
  parse_package(context, words, package);
  const int applied = package.has_delta ? apply_delta_files(context, package, file, savedir_file) : 0;
  notes.is_whole = true;
  return applied;
}

// Throws what reading the file would throw, unless `package` was read from the same. Without UCI_FLAG_STRICT no text is
// refused.
void check_readable(uci_context& context, uci_package& package, const LockedFile& file) {
  if (!is_strict(context) || notes_of(package).read_from == file.state()) return;
  const PackagePtr sections(new_package(context, ""));
  FileLines lines(file);
  WordReader words(lines);
  parse_sections(context, words, *sections);
}

// The package as it stands in its file, with what is staged for it; in no context yet.
PackagePtr read_package(uci_context& context, const Location& location) {
  const LockedFile file(location.path, Lock::kShared);
  require_readable(file);
  PackagePtr package(new_package(context, location.name));
  replace_text(package->path, location.path);
  package->has_delta = location.has_delta;
  package->uses_conf2 = location.uses_conf2;
  fill_package(context, *package, file, nullptr);
  return package;
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

WriteText text_of(const uci_package& package) {
  return [&package](const PutText& put) { write_package_text(package, false, put); };
}

void write_package(uci_package& package, const LockedFile& file) {
  require_writable(package);
  replace_file(package.path, text_of(package), file);
}

// Re-reads the file under its lock, applies all that is staged, writes it, and only then empties the delta file.
void commit_with_delta(uci_context& context, uci_package& package) {
  const LockedFile file = open_for_commit(package.path);
  LockedFile delta_file = open_delta_file(context, package);
  append_pending(delta_file, package);
  check_readable(context, package, file);
  // From here on the caller's package is the new one, whatever the disk says: both at a time would be much memory.
  if (fill_package(context, package, file, &delta_file) == 0) return;
  write_package(package, file);
  if (delta_file.is_open()) delta_file.truncate();
  free_deltas(package.saved_delta);
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
  if (!create_file(path, text_of(package))) replace_file(path, text_of(package), open_for_commit(path));
  replace_text(package.path, path);
}

void commit(uci_context& context, uci_package& package, bool overwrite) {
  if (package.path == nullptr) {
    if (!overwrite) throw Failure{UCI_ERR_INVAL};
    commit_imported(context, package);
  } else if (!package.has_delta) {
    commit_from_memory(package);
  } else if (overwrite && notes_of(package).is_whole) {
    commit_overwriting(context, package);
  } else {
    commit_with_delta(context, package);
  }
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

void complete_package(uci_context& context, uci_package& package) {
  if (notes_of(package).is_whole) return;
  const LockedFile file(package.path, Lock::kShared);
  require_readable(file);
  fill_package(context, package, file, nullptr);
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
    uci::commit(context, **p, overwrite);
  });
}

int uci_revert(uci_context* ctx, uci_ptr* ptr) {
  return guarded(ctx, [&](uci_context& context) {
    if (ptr == nullptr) throw Failure{UCI_ERR_INVAL};
    uci::revert(context, *ptr);
  });
}

}  // extern "C"

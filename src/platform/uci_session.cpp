// Sessions on libuci's public interface.
#include "platform/uci_session.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <exception>
#include <sys/stat.h>
#include <utility>

#include <uci.h>

#include "platform/log.h"

namespace platform {
namespace {

thread_local UciSession* innermost = nullptr;

// What tells one state of a file from another; all zero where there is no file.
struct FileState {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  std::int64_t modified_ns = 0;
  std::int64_t changed_ns = 0;

  bool operator==(const FileState&) const = default;
};

#ifdef UCI_CONF2DIR
constexpr const char* kVolatileFolder = UCI_CONF2DIR;
#else
constexpr const char* kVolatileFolder = "/var/run/uci";  // where newer versions of libuci look
#endif

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

std::int64_t nanoseconds(const timespec& time) { return time.tv_sec * kNanosecondsPerSecond + time.tv_nsec; }

FileState read_state(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return {};
  return {status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim), nanoseconds(status.st_ctim)};
}

std::int64_t now_ns() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return nanoseconds(now);
}

// A package as it was when it was read.
struct Reading {
  std::string package;
  FileState file{};
  FileState staged{};
  FileState volatile_file{};  // libuci's second folder, of packages that do not survive a reboot
  std::int64_t taken_ns = 0;  // before the package was read
  unsigned int starts = 0;    // of the session, when the states were last seen unchanged

  [[nodiscard]] bool has_states_of(const Reading& other) const {
    return file == other.file && staged == other.staged && volatile_file == other.volatile_file;
  }
};

// File times advance in steps of a few milliseconds: a file that was written just before it was read could be written
// again without a new time.
bool is_fresh_from_the_pen(const Reading& reading) {
  constexpr std::int64_t kTimeStep = 20'000'000;
  const std::int64_t latest =
      std::max({reading.file.changed_ns, reading.staged.changed_ns, reading.volatile_file.changed_ns});
  return latest > reading.taken_ns - kTimeStep;
}

uci_package* find_loaded(uci_context* context, const char* package) {
  uci_element* element = nullptr;
  uci_foreach_element(&context->root, element) {
    if (std::strcmp(element->name, package) == 0) return uci_to_package(element);
  }
  return nullptr;
}

void unload(uci_context* context, const char* package) {
  if (uci_package* loaded = find_loaded(context, package)) uci_unload(context, loaded);
}

}  // namespace

// The packages of one folder.
class UciFolder {
 public:
  explicit UciFolder(std::string confdir) : confdir_(std::move(confdir)), context_(uci_alloc_context()) {
    if (context_ && !confdir_.empty()) uci_set_confdir(context_.get(), confdir_.c_str());
  }

  [[nodiscard]] const std::string& confdir() const { return confdir_; }
  [[nodiscard]] uci_context* context() const { return context_.get(); }

  // Drops `package` if it is loaded and no longer what its files hold; notes their state if it is about to be loaded.
  // False when it dropped it.
  bool refresh(const char* package, unsigned int starts) {
    const bool is_loaded = find_loaded(context(), package) != nullptr;
    Reading& reading = reading_of(package);
    if (is_loaded && reading.starts == starts) return true;
    const Reading now = take(package, starts);
    if (is_loaded && now.has_states_of(reading) && !is_fresh_from_the_pen(reading)) {
      reading.starts = starts;
      return true;
    }
    if (is_loaded) unload(context(), package);
    reading = now;
    return !is_loaded;
  }

 private:
  struct Free {
    void operator()(uci_context* context) const noexcept { uci_free_context(context); }
  };

  Reading& reading_of(const char* package) {
    const auto found = std::ranges::find(readings_, package, &Reading::package);
    return found != readings_.end() ? *found : readings_.emplace_back(Reading{.package = package});
  }

  [[nodiscard]] Reading take(const char* package, unsigned int starts) const {
    const std::int64_t taken = now_ns();
    return {package,
            read_state(std::string(context()->confdir) + '/' + package),
            read_state(std::string(context()->savedir) + '/' + package),
            read_state(std::string(kVolatileFolder) + '/' + package),
            taken,
            starts};
  }

  std::string confdir_;
  std::unique_ptr<uci_context, Free> context_;
  std::vector<Reading> readings_;
};

UciSession::UciSession() : outer_(std::exchange(innermost, this)), exceptions_before_(std::uncaught_exceptions()) {}

UciSession::~UciSession() {
  if (std::uncaught_exceptions() == exceptions_before_) commit();
  innermost = outer_;
}

UciSession* UciSession::current() { return innermost; }

UciFolder* UciSession::folder_of(const std::string& confdir) {
  for (const auto& folder : folders_) {
    if (folder->confdir() == confdir) return folder.get();
  }
  return folders_.emplace_back(std::make_unique<UciFolder>(confdir)).get();
}

uci_context* UciSession::context_for(const char* confdir, const char* package) {
  std::string folder_name = confdir == nullptr ? "" : confdir;
  while (folder_name.size() > 1 && folder_name.ends_with('/')) folder_name.pop_back();
  if (folder_name == UCI_CONFDIR) folder_name.clear();
  UciFolder* folder = folder_of(folder_name);
  if (folder->context() != nullptr && !folder->refresh(package, starts_)) cursor_.forget();
  return folder->context();
}

void UciSession::mark_changed(uci_package* package, const char* function, int line) {
  cursor_.forget();
  const std::string name = package->e.name;
  const auto is_this = [&](const Change& change) { return change.context == package->ctx && change.package == name; };
  if (std::ranges::none_of(changes_, is_this)) changes_.push_back({package->ctx, name, function, line});
}

void UciSession::commit() {
  if (!changes_.empty()) cursor_.forget();
  for (const Change& change : std::exchange(changes_, {})) {
    uci_package* loaded = find_loaded(change.context, change.package.c_str());
    if (loaded == nullptr) continue;
    if (uci_commit(change.context, &loaded, false) != UCI_OK) {
      write_log(LOG_ERR, change.function, change.line, "uci_commit failed.");
    }
    // Read again when it is asked for next: others may have written between.
    unload(change.context, change.package.c_str());
  }
}

void UciSession::settle() {
  commit();
  ++starts_;
}

void UciSession::release() {
  commit();
  cursor_.forget();
  folders_.clear();
}

void settle_uci() {
  if (innermost != nullptr) innermost->settle();
}

void release_uci() {
  if (innermost != nullptr) innermost->release();
}

}  // namespace platform

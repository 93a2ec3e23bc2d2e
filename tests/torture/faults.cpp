// Preloaded into the program under torture: makes the n-th call of a kind fail, once or from then on, or ends the
// program there. What it counts and what it does stands in /router/faults, which the torture maps, too.
//
// Not counted: what the test kit's own means do below /router/, and writes to sockets and pipes, whose other ends say
// for themselves what becomes of them. Each file of /etc that a rename replaces is kept below /router/versions/.
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <new>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

enum Kind : int { kNone, kWrite, kFsync, kRename, kOpen, kFork, kSpawn, kPipe, kMemory, kKinds };
enum Mode : int { kOnce, kFromThenOn, kShort, kDie, kThrow, kThrowStandard };
constexpr int kAny = kKinds;  // of kind: each of them but memory counts as one

// As tests/torture/faults.py maps it.
struct Control {
  std::atomic<int> armed;  // 0: nothing is counted
  std::atomic<int> kind;
  std::atomic<int> mode;
  std::atomic<int> at;  // from 1; 0: nothing fails
  std::atomic<int> seen;
  std::atomic<int> failed;
  std::atomic<int> versions;
  std::atomic<int> counts[kKinds];
};

Control* control = nullptr;
bool only_versions = false;  // in a tool that the program started

template <class Function>
Function next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// Not a static's initialiser: what looks the name up may itself ask for memory.
#define REAL(function)                         \
  static decltype(&::function) real = nullptr; \
  if (real == nullptr) real = next<decltype(&::function)>(#function)

// json-c does not look whether a copy of a name found memory, and would end the program (docs/reliability.md).
[[gnu::tls_model("initial-exec")]] thread_local bool json_c_copies = false;

bool is_json_c(const void* caller) {
  Dl_info place{};
  return dladdr(caller, &place) != 0 && std::strstr(place.dli_fname, "/libjson-c.so") != nullptr;
}

// Whether this call is to fail. The program may end here instead.
bool fails(Kind kind, int error) {
  if (control == nullptr || only_versions || json_c_copies || control->armed.load() == 0) return false;
  control->counts[kind].fetch_add(1);
  const int wanted = control->kind.load();
  if (wanted != kind && (wanted != kAny || kind == kMemory)) return false;
  const int number = control->seen.fetch_add(1) + 1;
  const int at = control->at.load();
  if (at == 0 || number < at) return false;
  const int mode = control->mode.load();
  if ((mode == kOnce || mode == kThrow || mode == kThrowStandard) && number != at) return false;
  if (mode == kDie) {
    kill(getpid(), SIGKILL);
    while (true) pause();
  }
  control->failed.fetch_add(1);
  errno = error;
  return true;
}

bool is_ours(const char* path) { return path == nullptr || std::strncmp(path, "/router/", 8) == 0; }

bool is_counted(int descriptor) {
  if (control == nullptr || control->armed.load() == 0) return false;
  const int error = errno;
  char link[64];
  char path[512];
  std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
  const ssize_t length = readlink(link, path, sizeof path - 1);
  path[length < 0 ? 0 : length] = '\0';
  errno = error;
  return path[0] == '/' && !is_ours(path) && std::strncmp(path, "/dev/", 5) != 0;
}

__attribute__((constructor)) void map_control() {
  const int file = static_cast<int>(next<int (*)(const char*, int, ...)>("open")("/router/faults", O_RDWR | O_CLOEXEC));
  if (file < 0) return;
  void* place = mmap(nullptr, sizeof(Control), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  close(file);
  if (place != MAP_FAILED) control = static_cast<Control*>(place);
  only_versions = getenv("FAULTS_ONLY_VERSIONS") != nullptr;
}

void keep_version(const char* from, const char* to) {
  if (control == nullptr || std::strncmp(to, "/etc/", 5) != 0) return;
  char kept[600];
  const char* name = std::strrchr(to, '/') + 1;
  std::snprintf(kept, sizeof kept, "/router/versions/%d-%d-%.200s", static_cast<int>(getpid()),
                control->versions.fetch_add(1), name);
  const int error = errno;
  REAL(link);
  [[maybe_unused]] const int linked = real(from, kept);  // a version that cannot be kept is not looked at
  errno = error;
}

mode_t mode_of(int flags, va_list arguments) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
}

}  // namespace

extern "C" {

ssize_t write(int descriptor, const void* data, size_t size) {
  REAL(write);
  if (!is_counted(descriptor)) return real(descriptor, data, size);
  if (!fails(kWrite, ENOSPC)) return real(descriptor, data, size);
  if (control->mode.load() == kShort && size > 1 && control->failed.load() == 1)
    return real(descriptor, data, size / 2);
  return -1;
}

int fsync(int descriptor) {
  REAL(fsync);
  return fails(kFsync, EIO) ? -1 : real(descriptor);
}

int rename(const char* from, const char* to) {
  REAL(rename);
  if (!is_ours(to) && fails(kRename, EIO)) return -1;
  keep_version(from, to);
  return real(from, to);
}

int open(const char* path, int flags, ...) {
  REAL(open);
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = mode_of(flags, arguments);
  va_end(arguments);
  return !is_ours(path) && fails(kOpen, EMFILE) ? -1 : real(path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
  REAL(openat);
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = mode_of(flags, arguments);
  va_end(arguments);
  return !is_ours(path) && fails(kOpen, EMFILE) ? -1 : real(folder, path, flags, mode);
}

FILE* fopen(const char* path, const char* mode) {
  REAL(fopen);
  return !is_ours(path) && fails(kOpen, EMFILE) ? nullptr : real(path, mode);
}

int mkostemp(char* path, int flags) {
  REAL(mkostemp);
  return !is_ours(path) && fails(kOpen, EMFILE) ? -1 : real(path, flags);
}

pid_t fork() {
  REAL(fork);
  return fails(kFork, EAGAIN) ? -1 : real();
}

int posix_spawnp(pid_t* child, const char* file, const posix_spawn_file_actions_t* actions,
                 const posix_spawnattr_t* attributes, char* const argv[], char* const environment[]) {
  REAL(posix_spawnp);
  if (!fails(kSpawn, EAGAIN)) return real(child, file, actions, attributes, argv, environment);
  if (control->mode.load() == kThrow) throw 1;  // what no library means to throw
  if (control->mode.load() == kThrowStandard) throw std::bad_alloc();
  return EAGAIN;
}

int pipe2(int* ends, int flags) {
  REAL(pipe2);
  return fails(kPipe, EMFILE) ? -1 : real(ends, flags);
}

// What an assertion has to say is told whatever failed: the C library makes the text in memory that it asks for.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the C library's name
void __assert_fail(const char* assertion, const char* file, unsigned int line, const char* function) {
  if (control != nullptr) control->armed.store(0);
  static void (*real)(const char*, const char*, unsigned int, const char*) = nullptr;
  if (real == nullptr) real = next<void (*)(const char*, const char*, unsigned int, const char*)>("__assert_fail");
  real(assertion, file, line, function);
  abort();
}

void* malloc(size_t size) {
  REAL(malloc);
  return fails(kMemory, ENOMEM) ? nullptr : real(size);
}

char* strdup(const char* text) {
  REAL(strdup);
  json_c_copies = is_json_c(__builtin_return_address(0));
  char* const copy = real(text);
  json_c_copies = false;
  return copy;
}

void* calloc(size_t count, size_t size) {
  REAL(calloc);
  return fails(kMemory, ENOMEM) ? nullptr : real(count, size);
}

void* realloc(void* old, size_t size) {
  REAL(realloc);
  return fails(kMemory, ENOMEM) ? nullptr : real(old, size);
}

}  // extern "C"

// No allocation of its own may fail here: bad_alloc's room is the C++ runtime's.
void* operator new(std::size_t size) {
  static void* (*real)(std::size_t) = nullptr;
  if (real == nullptr) real = next<void* (*)(std::size_t)>("_Znwm");
  if (fails(kMemory, ENOMEM)) throw std::bad_alloc();
  return real(size);
}

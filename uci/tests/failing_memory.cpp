// Stands between the library and what allocates.
#include "failing_memory.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <new>

namespace {

int allocations_left = -1;  // until one fails; -1: none does
bool fails_from_then_on = false;
bool has_failed = false;

bool must_fail() {
  if (allocations_left < 0) return false;
  if (allocations_left > 0) {
    --allocations_left;
    return false;
  }
  has_failed = true;
  if (!fails_from_then_on) allocations_left = -1;
  errno = ENOMEM;
  return true;
}

}  // namespace

void fail_allocation(int at, Failing failing) {
  has_failed = false;
  fails_from_then_on = failing == Failing::kFromThenOn;
  allocations_left = at;
}

bool end_failing() {
  allocations_left = -1;
  return has_failed;
}

// The linker leads the library's calls here (--wrap).
extern "C" {
void* __real_malloc(std::size_t size);
char* __real_strdup(const char* text);
ssize_t __real_getline(char** line, std::size_t* size, FILE* stream);
DIR* __real_opendir(const char* path);
char* __real_realpath(const char* path, char* result);

void* __wrap_malloc(std::size_t size) { return must_fail() ? nullptr : __real_malloc(size); }
char* __wrap_strdup(const char* text) { return must_fail() ? nullptr : __real_strdup(text); }
ssize_t __wrap_getline(char** line, std::size_t* size, FILE* stream) {
  return must_fail() ? -1 : __real_getline(line, size, stream);
}
DIR* __wrap_opendir(const char* path) { return must_fail() ? nullptr : __real_opendir(path); }
char* __wrap_realpath(const char* path, char* result) { return must_fail() ? nullptr : __real_realpath(path, result); }
}

// Not inlined: where g++ sees into one of these and not into the others, it takes them for a pair that does not match.
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* memory = must_fail() ? nullptr : __real_malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

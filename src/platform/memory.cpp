// Settings of the C library's allocator.
#include "platform/memory.h"

#include <cstddef>
#include <cstdlib>  // tells which C library it is

#ifdef __GLIBC__
#include <malloc.h>
#include <unistd.h>
#endif

namespace platform {

void return_large_blocks() {
#ifdef __GLIBC__
  constexpr int kLargeBlock = 128 * 1024;  // glibc's own first bound; setting it ends the learning
  mallopt(M_MMAP_THRESHOLD, kLargeBlock);
  mallopt(M_TRIM_THRESHOLD, kLargeBlock);
#endif
}

void return_free_memory() {
#ifdef __GLIBC__
  constexpr std::ptrdiff_t kSmallHeap = std::ptrdiff_t{512} * 1024;
  static const char* const begin = static_cast<const char*>(sbrk(0));  // of the first call, before the first request
  if (static_cast<const char*>(sbrk(0)) - begin > kSmallHeap) malloc_trim(0);
#endif
}

}  // namespace platform

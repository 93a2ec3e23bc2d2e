// Settings of the C library's allocator.
#include "platform/memory.h"

#include <cstdlib>  // tells which C library it is

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace platform {

void return_large_blocks() {
#ifdef __GLIBC__
  constexpr int kLargeBlock = 128 * 1024;  // glibc's own first bound; setting it ends the learning
  mallopt(M_MMAP_THRESHOLD, kLargeBlock);
  mallopt(M_TRIM_THRESHOLD, kLargeBlock);
#endif
}

}  // namespace platform

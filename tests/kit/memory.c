// Preloaded into the program under test, where a sanitizer counts its allocations: keeps in /router/memory how many bytes
// it holds and how many it held at most, as two 64-bit numbers. They are the bytes that it asked for: the same on every
// machine, whatever the allocator, the load or the time.
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#pragma weak __sanitizer_install_malloc_and_free_hooks
#pragma weak __sanitizer_get_allocated_size
extern int __sanitizer_install_malloc_and_free_hooks(void (*on_malloc)(const volatile void*, size_t),
                                                     void (*on_free)(const volatile void*));
extern size_t __sanitizer_get_allocated_size(const volatile void* block);

struct counts {
  int64_t held;
  int64_t most;
};
static struct counts* counts;

static void on_malloc(const volatile void* block, size_t size) {
  (void)block;
  const int64_t held = __atomic_add_fetch(&counts->held, (int64_t)size, __ATOMIC_SEQ_CST);
  int64_t most = __atomic_load_n(&counts->most, __ATOMIC_SEQ_CST);
  while (held > most && !__atomic_compare_exchange_n(&counts->most, &most, held, 0, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST)) {
  }
}

static void on_free(const volatile void* block) {
  __atomic_sub_fetch(&counts->held, (int64_t)__sanitizer_get_allocated_size(block), __ATOMIC_SEQ_CST);
}

__attribute__((constructor)) static void begin(void) {
  const int is_the_program = strcmp(program_invocation_short_name, "router-api") == 0;
  if (!is_the_program || __sanitizer_install_malloc_and_free_hooks == NULL) return;
  const int fd = open("/router/memory", O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (fd < 0) return;
  void* map = MAP_FAILED;
  if (ftruncate(fd, sizeof(struct counts)) == 0) {
    map = mmap(NULL, sizeof(struct counts), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  }
  close(fd);
  if (map == MAP_FAILED) return;
  counts = map;
  __sanitizer_install_malloc_and_free_hooks(on_malloc, on_free);
}

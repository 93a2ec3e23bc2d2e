// _dl_find_object: what the unwinder of gcc asks a newer glibc, and musl does not have, answered by dl_iterate_phdr.
#include <link.h>
#include <stddef.h>

// As the unwinder knows it, on 64 bits.
struct dl_find_object {
  unsigned long long flags;
  void* map_start;
  void* map_end;
  void* link_map;
  void* eh_frame;  // the segment of PT_GNU_EH_FRAME
  unsigned long long reserved[7];
};

struct search {
  uintptr_t address;
  struct dl_find_object* result;
};

static int look(struct dl_phdr_info* info, size_t size, void* data) {
  (void)size;
  struct search* search = data;
  void* frames = NULL;
  int holds = 0;
  for (size_t i = 0; i < info->dlpi_phnum; ++i) {
    const ElfW(Phdr)* segment = &info->dlpi_phdr[i];
    const uintptr_t begin = info->dlpi_addr + segment->p_vaddr;
    if (segment->p_type == PT_GNU_EH_FRAME) frames = (void*)begin;
    if (segment->p_type != PT_LOAD || search->address < begin || search->address - begin >= segment->p_memsz) continue;
    holds = 1;
    search->result->map_start = (void*)begin;
    search->result->map_end = (void*)(begin + segment->p_memsz);
  }
  search->result->eh_frame = frames;
  return holds && frames != NULL;
}

int _dl_find_object(void* address, struct dl_find_object* result) {
  struct search search = {(uintptr_t)address, result};
  return dl_iterate_phdr(look, &search) == 1 ? 0 : -1;
}

// The umask is the process's: it is exchanged around the start of a child.
#include "platform/child_umask.h"

#include <optional>
#include <sys/stat.h>

namespace platform {
namespace {

std::mutex mutex;
std::optional<mode_t> of_children;

}  // namespace

void set_child_umask(mode_t mask) {
  const std::lock_guard lock(mutex);
  of_children = mask;
}

ChildUmask::ChildUmask() : lock_(mutex) {
  if (of_children) own_ = umask(*of_children);
}

ChildUmask::~ChildUmask() {
  if (of_children) umask(own_);
}

}  // namespace platform

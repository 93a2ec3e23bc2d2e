// The umask that children get.
#pragma once

#include <mutex>
#include <sys/types.h>

namespace platform {

// Children get this one from now on, in place of the program's own.
void set_child_umask(mode_t mask);

// Makes the process's umask the children's for as long as it lives. A file that another thread makes meanwhile without
// naming its mode gets it, too.
class ChildUmask {
 public:
  ChildUmask();
  ChildUmask(const ChildUmask&) = delete;
  ChildUmask& operator=(const ChildUmask&) = delete;
  ~ChildUmask();

 private:
  std::unique_lock<std::mutex> lock_;
  mode_t own_ = 0;
};

}  // namespace platform

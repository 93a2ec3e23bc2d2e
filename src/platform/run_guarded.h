// What every piece of background work is run by.
#pragma once

#include <exception>
#include <functional>

#include "platform/log.h"

namespace platform {

// Runs `work`; what it throws is logged, since nobody could catch it.
inline void run_guarded(const std::function<void()>& work) noexcept {
  try {
    work();
  } catch (const std::exception& error) {
    log_error("background work ended: %s\n", error.what());
  }
}

}  // namespace platform

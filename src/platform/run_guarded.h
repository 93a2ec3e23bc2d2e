// What all work is run by that nobody waits for with an answer.
#pragma once

#include <exception>
#include <functional>

#include "platform/log.h"
#include "platform/uci_session.h"

namespace platform {

// Runs `work`; what it throws is logged, since nobody could catch it.
inline void run_guarded(const std::function<void()>& work) noexcept {
  try {
    const UciSession session;
    work();
  } catch (const std::exception& error) {
    log_error("background work ended: %s\n", error.what());
  } catch (...) {
    log_error("background work ended: %s\n", "no standard exception");
  }
}

}  // namespace platform

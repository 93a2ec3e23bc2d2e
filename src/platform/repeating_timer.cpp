// The kernel keeps the time; the thread waits for it.
#include "platform/repeating_timer.h"

#include <cerrno>
#include <cstdint>
#include <sys/timerfd.h>
#include <unistd.h>

#include "platform/background.h"
#include "platform/run_guarded.h"

namespace platform {
namespace {

void run_each_time(int clock, void (*work)()) {
  while (true) {
    std::uint64_t times = 0;
    const ssize_t got = read(clock, &times, sizeof times);
    if (got < 0 && errno == EINTR) continue;
    if (got != static_cast<ssize_t>(sizeof times)) return;
    run_guarded(work);
  }
}

}  // namespace

bool RepeatingTimer::make() {
  UniqueFd clock(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC));
  if (!clock.valid()) return false;
  if (!start_detached([descriptor = clock.get(), work = work_] { run_each_time(descriptor, work); })) {
    errno = EAGAIN;
    return false;
  }
  clock_ = std::move(clock);
  return true;
}

TimerStart RepeatingTimer::set(unsigned int seconds) {
  if (!clock_.valid() && !make()) return TimerStart::kNotMade;
  const timespec time{.tv_sec = static_cast<time_t>(seconds), .tv_nsec = 0};
  const itimerspec wanted{.it_interval = time, .it_value = time};
  return timerfd_settime(clock_.get(), 0, &wanted, nullptr) == 0 ? TimerStart::kStarted : TimerStart::kNotSet;
}

}  // namespace platform

// A timer that goes off again and again.
#pragma once

#include "platform/file.h"

namespace platform {

enum class TimerStart { kStarted, kNotMade, kNotSet };  // the failures with errno

// Runs its work in a thread of its own every so many seconds. There is one time and one thread, however often it is
// set: setting it replaces what is pending. Work that takes longer than its interval is not run twice at once. Never
// destroyed before the process ends: the thread lives on. One thread may set it.
class RepeatingTimer {
 public:
  explicit RepeatingTimer(void (*work)()) : work_(work) {}
  // For the first time after `seconds` (1 or more), and then every `seconds`.
  TimerStart set(unsigned int seconds);

 private:
  bool make();

  void (*work_)();
  UniqueFd clock_;
};

}  // namespace platform

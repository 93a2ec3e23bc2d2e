// A timer that goes off again and again.
#include "platform/repeating_timer.h"

#include <condition_variable>
#include <mutex>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

using platform::RepeatingTimer;
using platform::TimerStart;

std::mutex mutex;
std::condition_variable counted;
int count = 0;

void count_and_throw() {
  {
    const std::lock_guard lock(mutex);
    ++count;
  }
  counted.notify_all();
  throw std::runtime_error("the next time comes all the same");
}

// A timer lives until the process ends, and so does its thread.
RepeatingTimer& timer() {
  static RepeatingTimer& made = *new RepeatingTimer(count_and_throw);
  return made;
}

TEST(RepeatingTimer, GoesOffAgainThoughItsWorkThrows) {
  ASSERT_EQ(timer().set(1), TimerStart::kStarted);
  std::unique_lock lock(mutex);
  counted.wait(lock, [] { return count >= 2; });  // ended by the test program's time limit
  lock.unlock();
  EXPECT_EQ(timer().set(1000000), TimerStart::kStarted) << "what is pending is replaced";
}

TEST(RepeatingTimer, MayBeSetAgain) {
  EXPECT_EQ(timer().set(1000000), TimerStart::kStarted);
  EXPECT_EQ(timer().set(1000000), TimerStart::kStarted);
}

}  // namespace

#include "platform/stoppable_thread.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <future>
#include <pthread.h>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

using platform::StoppableThread;

constexpr unsigned int kForEver = 1000000;  // a wait that is not ended fails by the test program's time limit

TEST(StoppableThread, EndsAWaitWhenItIsStopped) {
  StoppableThread thread;
  std::promise<void> started;
  std::atomic<bool> still_running{true};
  ASSERT_EQ(thread.start([&] {
    started.set_value();
    still_running = thread.wait_seconds(kForEver);
  }),
            0);
  started.get_future().wait();
  EXPECT_TRUE(thread.running());
  thread.stop();
  EXPECT_FALSE(still_running);
  EXPECT_FALSE(thread.running());
}

TEST(StoppableThread, StartsNoWaitOnceStopped) {
  StoppableThread thread;
  std::promise<void> may_wait;
  std::promise<void> stopping;
  ASSERT_EQ(thread.start([&] {
    may_wait.get_future().wait();
    EXPECT_FALSE(thread.wait_seconds(kForEver));
  }),
            0);
  std::thread owner([&] {
    stopping.set_value();
    thread.stop();
  });
  stopping.get_future().wait();
  while (thread.running()) std::this_thread::yield();
  may_wait.set_value();
  owner.join();
}

TEST(StoppableThread, StopsTheOneThatRunsBeforeItStartsAnother) {
  StoppableThread thread;
  std::atomic<int> alive{0};
  std::atomic<int> most{0};
  for (int start = 0; start < 20; ++start) {
    ASSERT_EQ(thread.start([&] {
      most = std::max(most.load(), ++alive);
      thread.wait_seconds(kForEver);
      --alive;
    }),
              0);
  }
  thread.stop();
  EXPECT_EQ(most, 1);
  EXPECT_EQ(alive, 0);
}

TEST(StoppableThread, IsJoinedByItsOwnersEnd) {
  std::atomic<bool> ended{false};
  {
    StoppableThread thread;
    ASSERT_EQ(thread.start([&] {
      thread.wait_seconds(kForEver);
      ended = true;
    }),
              0);
  }
  EXPECT_TRUE(ended);
}

TEST(StoppableThread, KeepsItsRunFlagWhenTheWorkEndsByItself) {
  StoppableThread thread;
  std::promise<void> ended;
  ASSERT_EQ(thread.start([&] { ended.set_value(); }), 0);
  ended.get_future().wait();
  EXPECT_TRUE(thread.running());
  thread.stop();
  EXPECT_FALSE(thread.running());
}

TEST(StoppableThread, MayBeStoppedTwiceOrWithoutAStart) {
  StoppableThread thread;
  thread.stop();
  thread.stop();
  EXPECT_FALSE(thread.running());
  EXPECT_FALSE(thread.wait_seconds(kForEver));
}

TEST(StoppableThread, WaitsForNothingWhenAskedTo) {
  StoppableThread thread;
  std::promise<bool> result;
  ASSERT_EQ(thread.start([&] { result.set_value(thread.wait_seconds(0)); }), 0);
  EXPECT_TRUE(result.get_future().get());
}

TEST(StoppableThread, SurvivesWorkThatThrows) {
  StoppableThread thread;
  ASSERT_EQ(thread.start([] { throw std::runtime_error("no"); }), 0);
  thread.stop();
  EXPECT_FALSE(thread.running());
}

constexpr std::size_t kNoMachines = std::size_t{1} << (sizeof(std::size_t) * 8 - 4);  // a stack that no machine has

std::size_t default_stack_size() {
  pthread_attr_t attributes;
  std::size_t size = 0;
  pthread_getattr_default_np(&attributes);
  pthread_attr_getstacksize(&attributes, &size);
  pthread_attr_destroy(&attributes);
  return size;
}

TEST(StoppableThread, TellsTheErrorOfAThreadThatCannotBeMade) {
  pthread_attr_t usual;
  pthread_getattr_default_np(&usual);
  pthread_attr_t unusable;
  pthread_attr_init(&unusable);
  pthread_attr_setstacksize(&unusable, kNoMachines);
  ASSERT_EQ(pthread_setattr_default_np(&unusable), 0);
  const bool is_asked_for = default_stack_size() == kNoMachines;
  StoppableThread thread;
  std::atomic<bool> ran{false};
  const int error = thread.start([&] { ran = true; });
  pthread_setattr_default_np(&usual);
  pthread_attr_destroy(&usual);
  pthread_attr_destroy(&unusable);
  if (!is_asked_for) GTEST_SKIP() << "this C library never asks for such a stack";
  EXPECT_EQ(error, EAGAIN);
  EXPECT_FALSE(thread.running());
  EXPECT_FALSE(ran);
}

}  // namespace

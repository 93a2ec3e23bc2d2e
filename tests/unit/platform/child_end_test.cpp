// Ends of children.
#include "platform/child_end.h"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/file.h"

namespace {

using platform::Deadline;
using platform::end_group;
using platform::reap;

constexpr unsigned int kLongSeconds = 1000000;  // a wait that is not ended fails by the test program's time limit

// A child in a group of its own that does its work and exits with what it gives.
template <class Work>
pid_t start(Work work) {
  const pid_t child = fork();
  if (child == 0) {
    setpgid(0, 0);
    _exit(work());
  }
  setpgid(child, child);
  return child;
}

int pause_for_ever() {
  while (true) pause();
}

TEST(ExitToWaitStatus, IsWhatTheKernelGives) {
  EXPECT_TRUE(WIFEXITED(platform::exit_to_wait_status(3)));
  EXPECT_EQ(WEXITSTATUS(platform::exit_to_wait_status(3)), 3);
}

TEST(Deadline, OfNoSecondsNeverIsOver) {
  const Deadline never(0);
  EXPECT_EQ(never.left_ms(), -1);
  EXPECT_FALSE(never.is_over());
}

TEST(Deadline, LeavesAtMostItsSeconds) {
  const Deadline far(kLongSeconds);
  EXPECT_GT(far.left_ms(), 0);
  EXPECT_LE(far.left_ms(), static_cast<int>(kLongSeconds) * 1000);
  EXPECT_FALSE(far.is_over());
}

TEST(Reap, GivesTheStatusOfAChildThatEnds) {
  for (const unsigned int seconds : {0U, kLongSeconds}) {
    const auto status = reap(start([] { return 7; }), Deadline(seconds));
    ASSERT_TRUE(status);
    EXPECT_EQ(WEXITSTATUS(*status), 7);
  }
}

TEST(Reap, LeavesAChildThatDoesNotEndInTime) {
  const pid_t child = start(pause_for_ever);
  EXPECT_EQ(reap(child, Deadline(1)), std::nullopt);
  EXPECT_EQ(kill(child, 0), 0) << "it still runs";
  EXPECT_TRUE(WIFSIGNALED(end_group(child)));
}

TEST(Reap, OfNoChildIsStatus127) { EXPECT_EQ(reap(getpid(), Deadline(0)), platform::exit_to_wait_status(127)); }

TEST(EndGroup, EndsAChildByTerm) {
  const int status = end_group(start(pause_for_ever));
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

TEST(EndGroup, KillsAChildThatDoesNotListen) {
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = start([&] {
    signal(SIGTERM, SIG_IGN);
    if (write(ready[1], "x", 1) != 1) return 1;
    return pause_for_ever();
  });
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  const int status = end_group(child);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGKILL);
  for (const int end : ready) close(end);
}

TEST(EndGroup, EndsWhatTheChildStarted) {
  int alive[2];  // its reader sees the end of the file once nobody holds the other end
  ASSERT_EQ(pipe(alive), 0);
  const pid_t child = start([&] {
    if (fork() == 0) {
      signal(SIGTERM, SIG_IGN);
      pause_for_ever();
    }
    return pause_for_ever();
  });
  close(alive[1]);
  end_group(child);
  char byte = 0;
  EXPECT_EQ(read(alive[0], &byte, 1), 0);
  close(alive[0]);
}

}  // namespace

// Work that outlives a request.
#include "platform/background.h"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <fcntl.h>
#include <future>
#include <mutex>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/file.h"
#include "platform/log.h"
#include "platform/process.h"

namespace {

constexpr std::chrono::seconds kDeadline{10};

TEST(StartDetached, RunsTheWorkAndContainsItsExceptions) {
  std::promise<void> done;
  EXPECT_TRUE(platform::start_detached([&done] {
    done.set_value();
    throw std::runtime_error("thrown in a thread");
  }));
  EXPECT_EQ(done.get_future().wait_for(kDeadline), std::future_status::ready);
}

TEST(StartTimer, RunsTheWorkOnceItsTimeHasCome) {
  std::promise<void> done;
  EXPECT_TRUE(platform::start_timer(0, [&done] { done.set_value(); }));
  EXPECT_EQ(done.get_future().wait_for(kDeadline), std::future_status::ready);
}

// Reads until the daemon, the only writer, has gone.
std::string read_to_end(int fifo) {
  std::string text;
  std::array<char, 4096> piece{};
  for (ssize_t got = read(fifo, piece.data(), piece.size()); got > 0; got = read(fifo, piece.data(), piece.size())) {
    text.append(piece.data(), static_cast<std::size_t>(got));
  }
  return text;
}

TEST(StartDaemon, HoldsOnlyItsStandardStreams) {
  const char* path = "/tmp/background_test_fifo";
  std::remove(path);
  ASSERT_EQ(mkfifo(path, 0600), 0);
  const int held = open("/dev/null", O_RDONLY);
  const auto started = platform::start_daemon([path] {
    const platform::ProcessResult listed = platform::run_shell("for fd in /proc/$PPID/fd/*; do readlink $fd; done");
    platform::write_file(path, listed.output + "end\n");
  });
  EXPECT_EQ(started, platform::DaemonStart::kStarted);
  const platform::UniqueFd fifo(open(path, O_RDONLY));
  const std::string listed = read_to_end(fifo.get());
  close(held);
  std::remove(path);
  // The fourth is the pipe through which the daemon reads what its child lists.
  EXPECT_TRUE(listed.starts_with("/dev/null\n/dev/null\n/dev/null\n")) << listed;
  EXPECT_EQ(listed.find("/dev/null", 30), std::string::npos) << listed;
  EXPECT_TRUE(listed.ends_with("end\n")) << listed;
}

TEST(StartDaemon, IsSafeWhileOtherThreadsLog) {
  std::atomic<bool> stop{false};
  std::thread logger([&stop] {
    while (!stop) log_debug("busy %d", 1);
  });
  for (int round = 0; round < 20; ++round) {
    EXPECT_EQ(platform::start_daemon([] { log_debug("from a daemon"); }), platform::DaemonStart::kStarted);
  }
  stop = true;
  logger.join();
}

}  // namespace

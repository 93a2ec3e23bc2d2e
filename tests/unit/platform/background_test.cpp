// Work that outlives a request.
#include "platform/background.h"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <future>
#include <memory>
#include <mutex>
#include <poll.h>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/child_umask.h"
#include "platform/file.h"
#include "platform/log.h"
#include "platform/process.h"

namespace {

constexpr int kDeadlineMs = 120'000;  // only a failure meets it
constexpr std::chrono::milliseconds kDeadline{kDeadlineMs};

// Writes into a FIFO, once somebody reads it.
void tell(const char* path, const std::string& text) {
  const platform::UniqueFd fifo(open(path, O_WRONLY));
  EXPECT_EQ(write(fifo.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

TEST(StartDetached, RunsTheWorkAndContainsItsExceptions) {
  std::promise<void> done;
  EXPECT_TRUE(platform::start_detached([&done] {
    done.set_value();
    throw std::runtime_error("thrown in a thread");
  }));
  EXPECT_EQ(done.get_future().wait_for(kDeadline), std::future_status::ready);
}

// What the process holds, but for the folder that it reads this from.
std::string open_descriptors() {
  std::string listed;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const std::string target = std::filesystem::read_symlink(entry.path());
    if (!target.starts_with("/proc/")) listed += target + '\n';
  }
  return listed;
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

TEST(StartDaemon, RunsCommandsWhateverOtherThreadsStartMeanwhile) {
  platform::set_child_umask(022);
  std::atomic<bool> is_over = false;
  std::atomic<int> runs = 0;
  std::thread other([&] {
    for (; !is_over; ++runs) platform::run({"true"});
  });
  // AddressSanitizer keeps each new place that allocates, under a lock of its own that a fork does not wait for.
  constexpr int kAllPlacesAreKnown = 20;
  while (runs < kAllPlacesAreKnown) std::this_thread::yield();
  constexpr int kDaemons = 40;
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  for (int daemon = 0; daemon < kDaemons; ++daemon) {
    const auto work = [&] {
      platform::run({"true"});
      if (write(ends[1], "x", 1) != 1) _exit(1);
    };
    ASSERT_EQ(platform::start_daemon(work, ends[1]), platform::DaemonStart::kStarted);
  }
  int heard = 0;
  for (pollfd told{ends[0], POLLIN, 0}; heard < kDaemons && poll(&told, 1, kDeadlineMs) == 1; ++heard) {
    char word = 0;
    ASSERT_EQ(read(ends[0], &word, 1), 1);
  }
  EXPECT_EQ(heard, kDaemons);
  is_over = true;
  other.join();
  for (const int end : ends) close(end);
}

TEST(StartDaemon, HoldsOnlyItsStandardStreams) {
  const char* path = "/tmp/background_test_fifo";
  std::remove(path);
  ASSERT_EQ(mkfifo(path, 0600), 0);
  const int held = open("/dev/null", O_RDONLY);
  const auto started = platform::start_daemon([path] { tell(path, open_descriptors() + "end\n"); });
  EXPECT_EQ(started, platform::DaemonStart::kStarted);
  const platform::UniqueFd fifo(open(path, O_RDONLY));
  const std::string listed = read_to_end(fifo.get());
  close(held);
  std::remove(path);
  EXPECT_EQ(listed, "/dev/null\n/dev/null\n/dev/null\nend\n");
}

TEST(ReadyThread, BeginsWhenItIsTold) {
  std::promise<void> done;
  std::atomic<bool> told{false};
  platform::ReadyWork work = platform::ready_thread([&] {
    EXPECT_TRUE(told);
    done.set_value();
  });
  ASSERT_TRUE(work);
  told = true;
  work.begin();
  EXPECT_FALSE(work);
  EXPECT_EQ(done.get_future().wait_for(kDeadline), std::future_status::ready);
}

TEST(ReadyThread, ThatIsDroppedNeverBegins) {
  auto owned = std::make_shared<std::promise<void>>();
  std::future<void> ended = owned->get_future();
  ASSERT_TRUE(platform::ready_thread([owned] { owned->set_value(); }));
  owned.reset();  // the thread is the last owner: as it ends, the promise is broken
  ASSERT_EQ(ended.wait_for(kDeadline), std::future_status::ready);
  EXPECT_THROW(ended.get(), std::future_error);
}

TEST(ReadyDaemon, BeginsWhenItIsTold) {
  const char* path = "/tmp/background_test_fifo";
  std::remove(path);
  ASSERT_EQ(mkfifo(path, 0600), 0);
  platform::ReadyWork work = platform::ready_daemon([path] { tell(path, open_descriptors() + "end\n"); });
  ASSERT_TRUE(work);
  const platform::UniqueFd fifo(open(path, O_RDONLY | O_NONBLOCK));
  std::array<char, 8> piece{};
  EXPECT_EQ(read(fifo.get(), piece.data(), piece.size()), 0);  // nobody writes yet
  fcntl(fifo.get(), F_SETFL, 0);
  const platform::UniqueFd again(open(path, O_RDWR));
  work.begin();
  std::string listed;
  while (!listed.ends_with("end\n")) {
    std::array<char, 4096> more{};
    listed.append(more.data(), static_cast<std::size_t>(read(fifo.get(), more.data(), more.size())));
  }
  std::remove(path);
  EXPECT_EQ(listed, "/dev/null\n/dev/null\n/dev/null\nend\n");
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

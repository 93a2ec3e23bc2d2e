// Detached threads, daemonised children and one-shot timers.
#include "platform/background.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/log.h"
#include "platform/run_guarded.h"

namespace platform {
namespace {

// The daemon must hold neither the client's connection nor the listening socket. Both are close-on-exec, which a fork
// without exec does not honour.
void close_descriptors_above_standard() {
  std::vector<int> open_descriptors;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    open_descriptors.push_back(std::atoi(entry.path().filename().c_str()));
  }
  for (const int descriptor : open_descriptors) {
    if (descriptor > STDERR_FILENO) close(descriptor);
  }
}

[[noreturn]] void run_as_daemon(const std::function<void()>& work) noexcept {
  closelog();
  run_guarded(close_descriptors_above_standard);
  if (daemon(0, 0) == 0) run_guarded(work);
  _exit(0);
}

}  // namespace

bool start_detached(std::function<void()> work) {
  try {
    std::thread([work = std::move(work)] { run_guarded(work); }).detach();
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

DaemonStart start_daemon(const std::function<void()>& work) {
  const pid_t child = fork_with_log_idle();
  if (child < 0) return DaemonStart::kForkFailed;
  if (child == 0) run_as_daemon(work);
  while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) continue;
  return DaemonStart::kStarted;
}

bool start_timer(unsigned int seconds, std::function<void()> work) {
  return start_detached([seconds, work = std::move(work)] {
    sleep_seconds(seconds);
    work();
  });
}

void sleep_seconds(unsigned int seconds) {
  while (seconds > 0) seconds = sleep(seconds);
}

}  // namespace platform

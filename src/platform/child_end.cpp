// Ends of children: told by the kernel, or brought about.
#include "platform/child_end.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/file.h"

namespace platform {
namespace {

constexpr std::int64_t kNever = -1;
constexpr int kStepMs = 20;  // where the kernel cannot tell of a child's end

std::int64_t now_ms() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

// Whether the child has ended. It is not reaped.
bool has_ended(pid_t child) {
  siginfo_t info{};
  return waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == child;
}

}  // namespace

Deadline::Deadline(unsigned int seconds)
    : seconds_(seconds), end_ms_(seconds == 0 ? kNever : now_ms() + std::int64_t{seconds} * 1000) {}

int Deadline::left_ms() const {
  if (end_ms_ == kNever) return -1;
  return static_cast<int>(std::max<std::int64_t>(end_ms_ - now_ms(), 0));
}

std::optional<int> reap(pid_t child, const Deadline& deadline) {
  const UniqueFd end(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
  while (true) {
    int status = 0;
    const bool is_limited = deadline.left_ms() >= 0;
    const pid_t ended = waitpid(child, &status, is_limited ? WNOHANG : 0);
    if (ended == child) return status;
    if (ended < 0 && errno != EINTR) return exit_to_wait_status(127);
    if (!is_limited) continue;
    if (deadline.is_over()) return std::nullopt;
    pollfd told{end.get(), POLLIN, 0};
    poll(&told, 1, end.valid() ? deadline.left_ms() : std::min(kStepMs, deadline.left_ms()));
  }
}

int end_group(pid_t child) {
  constexpr unsigned int kGraceSeconds = 2;
  kill(-child, SIGTERM);
  // The child is not reaped before the last signal: the group keeps its number.
  for (const Deadline grace(kGraceSeconds); !grace.is_over() && !has_ended(child);) poll(nullptr, 0, kStepMs);
  kill(-child, SIGKILL);
  return reap(child, Deadline(kGraceSeconds)).value_or(SIGKILL);  // only what the kernel itself holds outlives this
}

}  // namespace platform

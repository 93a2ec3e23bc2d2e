// Detached threads and daemonised children.
#include "platform/background.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/child_umask.h"
#include "platform/log.h"
#include "platform/process.h"
#include "platform/run_guarded.h"
#include "platform/uci_session.h"

namespace platform {
namespace {

// The daemon must hold neither the client's connection nor the listening socket. Both are close-on-exec, which a fork
// without exec does not honour.
void close_descriptors_above_standard(int kept_descriptor) {
  std::vector<int> open_descriptors;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    open_descriptors.push_back(std::atoi(entry.path().filename().c_str()));
  }
  for (const int descriptor : open_descriptors) {
    if (descriptor > STDERR_FILENO && descriptor != kept_descriptor) close(descriptor);
  }
}

[[noreturn]] void run_as_daemon(const std::function<void()>& work, int kept_descriptor) noexcept {
  closelog();
  bool is_alone = false;  // else it would wait for itself to begin, and keep the client's connection
  run_guarded([&] {
    close_descriptors_above_standard(kept_descriptor);
    is_alone = true;
  });
  lift_command_limits();
  if (is_alone && daemon(0, 0) == 0) run_guarded(work);
  _exit(0);
}

// What ready work waits behind: a pair of sockets, so that telling work that is gone to begin raises no signal.
struct Gate {
  UniqueFd teller;
  UniqueFd waiter;
};

std::optional<Gate> make_gate() {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return std::nullopt;
  return Gate{UniqueFd(ends[0]), UniqueFd(ends[1])};
}

// Waits until the work is told to begin, or dropped. Which.
bool is_told_to_begin(int waiter) {
  char word = 0;
  ssize_t got = 0;
  do {
    got = read(waiter, &word, 1);
  } while (got < 0 && errno == EINTR);
  return got == 1;
}

// fork() at a moment when no other thread is logging or starting a child: the daemon would find their locks held for
// ever. This thread's own hold on the second ends in both processes.
pid_t fork_with_nothing_held() {
  const ChildUmask nobody_else_starts_a_child;
  return fork_with_log_idle();
}

}  // namespace

bool start_detached(std::function<void()> work) {
  settle_uci();
  try {
    std::thread([work = std::move(work)] {
      lift_command_limits();
      run_guarded(work);
    }).detach();
    return true;
  } catch (const std::exception&) {  // no thread, or no memory for one
    return false;
  }
}

DaemonStart start_daemon(const std::function<void()>& work, int kept_descriptor) {
  settle_uci();
  const pid_t child = fork_with_nothing_held();
  if (child < 0) return DaemonStart::kForkFailed;
  if (child == 0) run_as_daemon(work, kept_descriptor);
  while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) continue;
  return DaemonStart::kStarted;
}

void ReadyWork::begin() {
  constexpr char kWord = 1;
  settle_uci();
  if (gate_.valid()) send(gate_.get(), &kWord, 1, MSG_NOSIGNAL);
  gate_.reset();
}

ReadyWork ready_thread(std::function<void()> work) {
  std::optional<Gate> gate = make_gate();
  if (!gate) return {};
  const auto waiter = std::make_shared<UniqueFd>(std::move(gate->waiter));
  const bool started = start_detached([waiter, work = std::move(work)] {
    const bool begins = is_told_to_begin(waiter->get());
    waiter->reset();
    if (begins) work();
  });
  return started ? ReadyWork(std::move(gate->teller)) : ReadyWork();
}

ReadyWork ready_daemon(const std::function<void()>& work) {
  std::optional<Gate> gate = make_gate();
  if (!gate) return {};
  const int waiter = gate->waiter.get();
  const auto work_when_told = [waiter, &work] {
    const bool begins = is_told_to_begin(waiter);
    close(waiter);
    if (begins) work();
  };
  if (start_daemon(work_when_told, waiter) == DaemonStart::kForkFailed) return {};
  return ReadyWork(std::move(gate->teller));
}

void sleep_seconds(unsigned int seconds) {
  release_uci();
  while (seconds > 0) seconds = sleep(seconds);
}

}  // namespace platform

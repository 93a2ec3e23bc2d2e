// Child processes by posix_spawn: every pipe is close-on-exec, every child is drained and reaped.
#include "platform/process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/file.h"
#include "platform/uci_session.h"

extern char** environ;

namespace platform {
namespace {

constexpr int kExitNotFound = 127;
constexpr int kExitNotExecutable = 126;
constexpr int exit_to_wait_status(int status) { return status << 8; }

struct Pipe {
  UniqueFd read_end;
  UniqueFd write_end;
};

// A close-on-exec pipe none of whose ends is a standard stream, so that handing one to a child never overwrites
// another.
std::optional<Pipe> make_pipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return std::nullopt;
  Pipe pipe{UniqueFd(ends[0]), UniqueFd(ends[1])};
  for (UniqueFd* end : {&pipe.read_end, &pipe.write_end}) {
    if (end->get() > STDERR_FILENO) continue;
    const int moved = fcntl(end->get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (moved < 0) return std::nullopt;
    end->reset(moved);
  }
  return pipe;
}

// What a child gets: its standard streams, default signals, no blocked ones.
class SpawnPlan {
 public:
  SpawnPlan() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_init(&attributes_);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    for (const int number : {SIGPIPE, SIGCHLD, SIGUSR1, SIGINT, SIGQUIT, SIGTERM, SIGHUP}) sigaddset(&signals, number);
    posix_spawnattr_setsigdefault(&attributes_, &signals);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;
  ~SpawnPlan() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }

  void connect(int ours, int theirs) { posix_spawn_file_actions_adddup2(&actions_, ours, theirs); }

  // 0 or an error number.
  // Descriptors are close-on-exec one by one; where the C library can, the child also closes whatever another thread
  // has just opened.
  int spawn(const std::vector<std::string>& argv, pid_t& child) {
#ifdef __GLIBC__
    posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
#endif
    std::vector<char*> words;
    words.reserve(argv.size() + 1);
    for (const std::string& word : argv) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    return posix_spawnp(&child, words[0], &actions_, &attributes_, words.data(), environ);
  }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

// Writes a piece of the input; closes the pipe when all is written or nobody reads any more.
void feed(UniqueFd& pipe, std::string_view& input) {
  const ssize_t written = write(pipe.get(), input.data(), input.size());
  if (written > 0) input.remove_prefix(static_cast<std::size_t>(written));
  const bool retry = written < 0 && (errno == EINTR || errno == EAGAIN);
  if (input.empty() || (written < 0 && !retry)) pipe.reset();
}

// Reads a piece of the output; closes the pipe at its end, or when the reader wants no more.
void drain(UniqueFd& pipe, const ProcessOptions& options, std::string& output) {
  std::array<char, 65536> piece{};
  const ssize_t got = read(pipe.get(), piece.data(), piece.size());
  if (got < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (got <= 0) {
    pipe.reset();
    return;
  }
  const std::string_view text(piece.data(), static_cast<std::size_t>(got));
  if (!options.reader) {
    output.append(text);
  } else if (!options.reader(text)) {
    pipe.reset();
  }
}

// Moves input and output at once, so that neither side waits for the other for ever.
void exchange(UniqueFd& to_child, UniqueFd& from_child, const ProcessOptions& options, std::string& output) {
  std::string_view input = options.input;
  while (to_child.valid() || from_child.valid()) {
    std::array<pollfd, 2> ends{{{to_child.get(), POLLOUT, 0}, {from_child.get(), POLLIN, 0}}};
    if (poll(ends.data(), ends.size(), -1) < 0) {
      if (errno == EINTR) continue;
      return;
    }
    if (ends[0].revents != 0) feed(to_child, input);
    if (ends[1].revents != 0) drain(from_child, options, output);
  }
}

// A write to a child that is gone must be an error, not the end of this thread's process.
class SigpipeBlocked {
 public:
  SigpipeBlocked() {
    sigemptyset(&pipe_);
    sigaddset(&pipe_, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe_, &previous_);
  }
  SigpipeBlocked(const SigpipeBlocked&) = delete;
  SigpipeBlocked& operator=(const SigpipeBlocked&) = delete;
  ~SigpipeBlocked() {
    if (sigismember(&previous_, SIGPIPE) == 1) return;
    constexpr timespec kNoWait{};
    while (sigtimedwait(&pipe_, nullptr, &kNoWait) == SIGPIPE) continue;
    pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
  }

 private:
  sigset_t pipe_{};
  sigset_t previous_{};
};

int reap(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return exit_to_wait_status(kExitNotFound);
  }
  return status;
}

UniqueFd open_null() {
  return UniqueFd(fcntl(UniqueFd(open("/dev/null", O_RDONLY | O_CLOEXEC)).get(), F_DUPFD_CLOEXEC, 3));
}

}  // namespace

int ProcessResult::exit_status() const { return WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : -1; }

ProcessResult run(const std::vector<std::string>& argv, const ProcessOptions& options) {
  ProcessResult result;
  if (argv.empty() || argv[0].empty()) return result;
  settle_uci();

  SpawnPlan plan;
  UniqueFd to_child;
  UniqueFd from_child;
  UniqueFd child_input;
  UniqueFd child_output;
  if (options.input.empty()) {
    child_input = open_null();
  } else {
    std::optional<Pipe> pipe = make_pipe();
    if (!pipe) return result;
    child_input = std::move(pipe->read_end);
    to_child = std::move(pipe->write_end);
    fcntl(to_child.get(), F_SETFL, O_NONBLOCK);
  }
  if (child_input.valid()) plan.connect(child_input.get(), STDIN_FILENO);
  if (options.capture_output) {
    std::optional<Pipe> pipe = make_pipe();
    if (!pipe) return result;
    from_child = std::move(pipe->read_end);
    child_output = std::move(pipe->write_end);
    plan.connect(child_output.get(), STDOUT_FILENO);
  }

  const SigpipeBlocked guard;
  pid_t child = -1;
  const int error = plan.spawn(argv, child);
  if (error == ENOENT || error == EACCES || error == ENOTDIR || error == ENOEXEC || error == E2BIG) {
    result.started = true;
    result.wait_status = exit_to_wait_status(error == ENOENT || error == ENOTDIR ? kExitNotFound : kExitNotExecutable);
    return result;
  }
  if (error != 0) return result;
  result.started = true;
  child_input.reset();
  child_output.reset();
  exchange(to_child, from_child, options, result.output);
  result.wait_status = reap(child);
  return result;
}

ProcessResult run_shell(const std::string& command, const ProcessOptions& options) {
  return run({"/bin/sh", "-c", command}, options);
}

std::size_t argument_max() {
  constexpr std::size_t kPages = 32;  // MAX_ARG_STRLEN of the kernel, the terminator included
  return kPages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) - 1;
}

std::vector<std::string> split_lines(std::string_view text, std::size_t size) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t line_feed = text.find('\n');
    std::size_t taken = line_feed == std::string_view::npos ? text.size() : line_feed + 1;
    if (size > 1 && taken > size - 1) taken = size - 1;
    std::string_view line = text.substr(0, taken);
    text.remove_prefix(taken);
    if (line.ends_with('\n')) line.remove_suffix(1);
    lines.emplace_back(line);
  }
  return lines;
}

}  // namespace platform

// Child processes by posix_spawn: every pipe is close-on-exec, every child is drained and reaped.
#include "platform/process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <set>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/child_end.h"
#include "platform/child_umask.h"
#include "platform/command_limits.h"
#include "platform/file.h"
#include "platform/log.h"
#include "platform/text.h"
#include "platform/uci_session.h"

extern char** environ;

namespace platform {
namespace {

constexpr int kExitNotFound = 127;
constexpr int kExitNotExecutable = 126;

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

// What a child gets: its standard streams, default signals, no blocked ones, a process group of its own.
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
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;
  ~SpawnPlan() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }

  void connect(int ours, int theirs) { note(posix_spawn_file_actions_adddup2(&actions_, ours, theirs)); }

  // 0 or an error number.
  // Descriptors of ours are close-on-exec one by one. Those of a library that are not: where the C library can, the
  // child closes them, else they are marked here as far as the kernel can (5.11).
  int spawn(const std::vector<std::string>& argv, pid_t& child) {
#ifdef __GLIBC__
    note(posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1));
#elif defined(SYS_close_range)
    constexpr unsigned kCloseOnExec = 1U << 2;
    syscall(SYS_close_range, STDERR_FILENO + 1, ~0U, kCloseOnExec);
#endif
    if (error_ != 0) return error_;
    std::vector<char*> words;
    words.reserve(argv.size() + 1);
    for (const std::string& word : argv) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    const ChildUmask umask_of_the_platform;
    return posix_spawnp(&child, words[0], &actions_, &attributes_, words.data(), environ);
  }

 private:
  // A child without one of its streams would be another command.
  void note(int error) {
    if (error_ == 0) error_ = error;
  }

  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
  int error_ = 0;
};

// Writes a piece of the input; closes the pipe when all is written or nobody reads any more.
void feed(UniqueFd& pipe, std::string_view& input) {
  const ssize_t written = write(pipe.get(), input.data(), input.size());
  if (written > 0) input.remove_prefix(static_cast<std::size_t>(written));
  const bool retry = written < 0 && (errno == EINTR || errno == EAGAIN);
  if (input.empty() || (written < 0 && !retry)) pipe.reset();
}

// Where the output of a child goes.
class Output {
 public:
  Output(const ProcessOptions& options, ProcessResult& result) : options_(options), result_(result) {
    result_.output.reserve(options.expected_output);
  }

  // False when no more is wanted.
  bool take(std::string_view piece) {
    if (options_.reader) return options_.reader(piece);
    const std::size_t kept = std::min(piece.size(), options_.max_output - result_.output.size());
    append_sparingly(result_.output, piece.substr(0, kept));
    result_.output_cut = result_.output_cut || kept < piece.size();
    read_ += piece.size();
    // One byte beyond the bound tells an output that was cut from one that was whole.
    return read_ <= std::max(kMostRead, options_.max_output);
  }

 private:
  const ProcessOptions& options_;
  ProcessResult& result_;
  std::size_t read_ = 0;
};

// Reads a piece of the output; closes the pipe at its end, or when no more is wanted.
void drain(UniqueFd& pipe, Output& output) {
  std::array<char, 65536> piece;  // not cleared: that would take longer than most outputs
  const ssize_t got = read(pipe.get(), piece.data(), piece.size());
  if (got < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (got <= 0 || !output.take({piece.data(), static_cast<std::size_t>(got)})) pipe.reset();
}

// Moves input and output at once, so that neither side waits for the other for ever. False when the time was over.
bool exchange(UniqueFd& to_child, UniqueFd& from_child, std::string_view input, Output& output,
              const Deadline& deadline) {
  while (to_child.valid() || from_child.valid()) {
    std::array<pollfd, 2> ends{{{to_child.get(), POLLOUT, 0}, {from_child.get(), POLLIN, 0}}};
    const int ready = poll(ends.data(), ends.size(), deadline.left_ms());
    if (ready < 0 && errno != EINTR) return true;
    if (ready == 0 && deadline.is_over()) return false;
    if (ready <= 0) continue;
    if (ends[0].revents != 0) feed(to_child, input);
    if (ends[1].revents != 0) drain(from_child, output);
    if (deadline.is_over()) return false;
  }
  return true;
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

// Of the calling thread.
thread_local bool limits_lifted = false;
thread_local std::set<std::string> late_programs;

// How the log and the memory of late programs call a command: no word of it came from outside.
std::string name_of(const std::vector<std::string>& argv) {
  if (argv[0] == "/bin/sh" && argv.size() == 3) return argv[2];
  return argv[0];
}

unsigned int limit_of(const std::vector<std::string>& argv) {
  if (limits_lifted) return 0;
  if (late_programs.contains(name_of(argv))) return 1;
  return argv[0] == "/bin/sh" && argv.size() == 3 ? limit_of_shell(argv[2]) : limit_of_argv(argv);
}

// Feeds, drains and reaps the child within its time.
void attend(pid_t child, const std::vector<std::string>& argv, const Deadline& deadline, UniqueFd& to_child,
            UniqueFd& from_child, const ProcessOptions& options, ProcessResult& result) {
  Output output(options, result);
  std::optional<int> status;
  if (exchange(to_child, from_child, options.input, output, deadline)) status = reap(child, deadline);
  if (status) {
    result.wait_status = *status;
    return;
  }
  log_error("'%s' did not end within %u s and is ended\n", name_of(argv).c_str(), deadline.seconds());
  late_programs.insert(name_of(argv));
  to_child.reset();
  from_child.reset();
  result.wait_status = end_group(child);
  result.too_late = true;
  result.output.clear();
}

// What nobody could take the output of is not left behind either: it comes to its end, or is brought to it.
void attend_or_reap(pid_t child, const std::vector<std::string>& argv, const Deadline& deadline, UniqueFd& to_child,
                    UniqueFd& from_child, const ProcessOptions& options, ProcessResult& result) {
  try {
    attend(child, argv, deadline, to_child, from_child, options, result);
  } catch (...) {
    to_child.reset();
    from_child.reset();
    if (!reap(child, deadline)) end_group(child);
    throw;
  }
}

UniqueFd open_null() {
  return UniqueFd(fcntl(UniqueFd(open("/dev/null", O_RDWR | O_CLOEXEC)).get(), F_DUPFD_CLOEXEC, 3));
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

  const UniqueFd dropped = options.drop_errors ? open_null() : UniqueFd();
  if (dropped.valid()) plan.connect(dropped.get(), STDERR_FILENO);

  const SigpipeBlocked guard;
  const unsigned int limit = limit_of(argv);
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
  attend_or_reap(child, argv, Deadline(limit), to_child, from_child, options, result);
  return result;
}

void forget_late_commands() { late_programs.clear(); }

void lift_command_limits() { limits_lifted = true; }

ProcessResult run_shell(const std::string& command, const ProcessOptions& options) {
  return run({"/bin/sh", "-c", command}, options);
}

}  // namespace platform

// The one door for child processes: an argv, or a constant shell text; input, output and exit status.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct ProcessResult {
  bool started = false;     // false only when no child could be made (pipe or fork failed)
  int wait_status = 0;      // as waitpid tells it; a tool that does not exist counts as exit status 127
  std::string output;       // standard output (empty where it was not captured, went to a reader, or came too late)
  bool output_cut = false;  // it printed more than ProcessOptions::max_output
  bool too_late = false;    // it was ended because its time was over: what it printed is not used

  // Exit status 0..255, or -1 when the child did not exit by itself.
  [[nodiscard]] int exit_status() const;
  [[nodiscard]] bool succeeded() const { return started && exit_status() == 0; }
};

inline constexpr std::size_t kOutputMax = std::size_t{4} << 20;  // far above what any reader of a whole text is given
// A bound for what is read of a tool that does not stop: a tool that is only talkative comes to its end before it.
inline constexpr std::size_t kMostRead = std::size_t{64} << 20;

struct ProcessOptions {
  std::string_view input = {};  // written to the child's standard input; then the child reads end of file
  bool capture_output = true;   // false: the child writes to our own standard output
  bool drop_errors = false;     // true: its standard error is /dev/null, not our own
  // Bytes of output that are kept. What comes beyond them is read and dropped, up to a bound of its own, past which the
  // pipe is closed.
  std::size_t max_output = kOutputMax;
  // Bytes that room is made for at once: a long output that grows piece by piece stands in memory twice at times.
  std::size_t expected_output = 0;
  // Given every piece of output as it comes, in place of ProcessResult::output. False ends the reading: the pipe is
  // closed and the child ends as a pipe's writer does.
  std::function<bool(std::string_view piece)> reader = {};
};

// A command has its time (platform/command_limits.h): past it, the process group that it leads gets TERM and, two
// seconds later, KILL, the log says which it was, and it counts as a tool that failed and printed nothing. A program
// that took too long gets no more than a second until forget_late_commands(). Not in a thread that lifted its limits.
void forget_late_commands();
// For work that is meant to outlive its request: the commands of the calling thread may take as long as they do.
void lift_command_limits();

// Runs argv[0] (looked up in PATH) and waits for it. Nothing of the text is parsed by a shell. The child gets standard
// input, output and error and no other descriptor of ours; it is always reaped. Safe from any thread.
ProcessResult run(const std::vector<std::string>& argv, const ProcessOptions& options = {});

// Runs `command` with /bin/sh -c. Only for texts made of constants and our own numbers.
ProcessResult run_shell(const std::string& command, const ProcessOptions& options = {});

}  // namespace platform

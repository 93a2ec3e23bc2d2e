// The one door for child processes: an argv, or a constant shell text; input, output and exit status.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct ProcessResult {
  bool started = false;  // false only when no child could be made (pipe or fork failed)
  int wait_status = 0;   // as waitpid tells it; a tool that does not exist counts as exit status 127
  std::string output;    // standard output, whole (empty where it was not captured or went to a reader)

  // Exit status 0..255, or -1 when the child did not exit by itself.
  [[nodiscard]] int exit_status() const;
  [[nodiscard]] bool succeeded() const { return started && exit_status() == 0; }
};

struct ProcessOptions {
  std::string_view input = {};  // written to the child's standard input; then the child reads end of file
  bool capture_output = true;   // false: the child writes to our own standard output
  // Given every piece of output as it comes, in place of ProcessResult::output. False ends the reading: the pipe is
  // closed and the child ends as a pipe's writer does.
  std::function<bool(std::string_view piece)> reader = {};
};

// Runs argv[0] (looked up in PATH) and waits for it. Nothing of the text is parsed by a shell. The child gets standard
// input, output and error and no other descriptor of ours; it is always reaped. Safe from any thread.
ProcessResult run(const std::vector<std::string>& argv, const ProcessOptions& options = {});

// Runs `command` with /bin/sh -c. Only for texts made of constants and our own numbers.
ProcessResult run_shell(const std::string& command, const ProcessOptions& options = {});

// Bytes that one word of an argv may have: Linux starts no program with a longer one (exit status 127).
std::size_t argument_max();

// The lines of `text`, without their line feeds. With size > 0 as fgets gives them to a reader with a buffer of `size`
// bytes: a line of more than size - 1 bytes comes in pieces.
std::vector<std::string> split_lines(std::string_view text, std::size_t size = 0);

}  // namespace platform

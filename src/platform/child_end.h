// Waiting for a child's end, and bringing it about.
#pragma once

#include <cstdint>
#include <optional>
#include <sys/types.h>

namespace platform {

// A wait status that tells of an exit.
constexpr int exit_to_wait_status(int status) { return status << 8; }

// When a command has to be done.
class Deadline {
 public:
  // 0 seconds: never.
  explicit Deadline(unsigned int seconds);
  [[nodiscard]] unsigned int seconds() const { return seconds_; }
  // What poll() takes: -1 for no end.
  [[nodiscard]] int left_ms() const;
  [[nodiscard]] bool is_over() const { return left_ms() == 0; }

 private:
  unsigned int seconds_;
  std::int64_t end_ms_;
};

// Reaps the child. Its wait status, or nullopt when it has not ended by `deadline`.
std::optional<int> reap(pid_t child, const Deadline& deadline);

// Ends the process group that the child leads: TERM, KILL two seconds later or once the child has ended. Its wait
// status.
int end_group(pid_t child);

}  // namespace platform

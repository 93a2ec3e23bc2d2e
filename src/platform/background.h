// Work that outlives a request: a detached thread or a daemonised child. Nothing else starts one. The commands of such
// work may take as long as they do.
#pragma once

#include <functional>
#include <utility>

#include "platform/file.h"

namespace platform {

// Runs `work` in a detached thread. False when no thread could be made. No exception leaves `work`.
bool start_detached(std::function<void()> work);

// What became of start_daemon, seen from the request's side.
enum class DaemonStart { kStarted, kForkFailed };

// Forks a child that daemonises (its own session, standard streams on /dev/null, no descriptor of ours but
// `kept_descriptor`, when there is one above the standard streams), runs `work` and exits with 0. Returns when the
// intermediate child has been reaped. `work` runs in a single-threaded copy of the process: it may run commands, log
// and use UCI.
DaemonStart start_daemon(const std::function<void()>& work, int kept_descriptor = -1);

// Work that stands ready, in a thread or daemon of its own, and begins when it is told to: a request that is answered
// with success has its work by then, and the work begins only once the answer is written. Dropped before it is told to
// begin, it never does.
class ReadyWork {
 public:
  ReadyWork() = default;
  explicit ReadyWork(UniqueFd gate) : gate_(std::move(gate)) {}
  // False when no thread or child could be made.
  explicit operator bool() const { return gate_.valid(); }
  void begin();

 private:
  UniqueFd gate_;
};
ReadyWork ready_thread(std::function<void()> work);
ReadyWork ready_daemon(const std::function<void()>& work);

// Sleeps whole seconds, signals or not. Every wait of a handler or of background work goes through here.
void sleep_seconds(unsigned int seconds);

}  // namespace platform

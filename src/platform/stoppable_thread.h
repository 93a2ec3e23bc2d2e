// A background thread that its owner stops and joins.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace platform {

// At most one thread at a time. One owner calls start and stop; the work calls running and wait_seconds.
class StoppableThread {
 public:
  StoppableThread() = default;
  StoppableThread(const StoppableThread&) = delete;
  StoppableThread& operator=(const StoppableThread&) = delete;
  ~StoppableThread() { stop(); }

  // Runs `work` in a thread of its own, once the one that runs has been stopped. 0, or the error number of a thread
  // that could not be made. What `work` throws is logged and ends it.
  int start(std::function<void()> work);

  // The run flag: set from start to stop, even when the work has ended by itself.
  [[nodiscard]] bool running() const;

  // Clears the run flag, ends the work's wait and joins the thread: the caller waits for what the work is at.
  void stop();

  // Waits up to `seconds` in steps of one, leaving when the run flag is cleared. Whether it is still set.
  bool wait_seconds(unsigned int seconds);

 private:
  std::thread thread_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  bool running_ = false;
};

}  // namespace platform

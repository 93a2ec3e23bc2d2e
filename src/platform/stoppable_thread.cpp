// A background thread that its owner stops and joins.
#include "platform/stoppable_thread.h"

#include <chrono>
#include <system_error>
#include <utility>

#include "platform/run_guarded.h"

namespace platform {

int StoppableThread::start(std::function<void()> work) {
  stop();
  settle_uci();
  {
    const std::lock_guard lock(mutex_);
    running_ = true;
  }
  try {
    thread_ = std::thread([work = std::move(work)] { run_guarded(work); });
    return 0;
  } catch (const std::system_error& error) {
    stop();
    return error.code().value();
  }
}

bool StoppableThread::running() const {
  const std::lock_guard lock(mutex_);
  return running_;
}

void StoppableThread::stop() {
  {
    const std::lock_guard lock(mutex_);
    running_ = false;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

bool StoppableThread::wait_seconds(unsigned int seconds) {
  release_uci();
  std::unique_lock lock(mutex_);
  // A step that ends early without the flag being cleared only makes the wait a second shorter.
  for (; running_ && seconds > 0; --seconds) changed_.wait_for(lock, std::chrono::seconds(1));
  return running_;
}

}  // namespace platform

// The syslog form that the router's log tools filter by.
#include "platform/log.h"

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <mutex>
#include <new>
#include <unistd.h>

namespace platform {
namespace {

// Held while the C library's log is in use, so that fork_with_log_idle can wait for it to be free.
std::mutex& log_mutex() {
  static std::mutex mutex;
  return mutex;
}

// The text that vprintf would print, whatever its length; where memory has ended, its beginning. Nothing is thrown:
// much of what is logged tells of a failure, also where nobody could catch another one.
class FormattedText {
 public:
  [[gnu::format(printf, 2, 0)]] FormattedText(const char* format, va_list arguments) noexcept {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(usual_.data(), usual_.size(), format, arguments);
    if (length < 0) usual_[0] = '\0';
    if (length >= static_cast<int>(usual_.size())) {
      const std::size_t size = static_cast<std::size_t>(length) + 1;
      long_.reset(new (std::nothrow) char[size]);
      if (long_) std::vsnprintf(long_.get(), size, format, again);
    }
    va_end(again);
  }

  [[nodiscard]] const char* c_str() const noexcept { return long_ ? long_.get() : usual_.data(); }

 private:
  std::array<char, 1024> usual_;
  std::unique_ptr<char[]> long_;
};

}  // namespace

void write_log(int priority, const char* function, int line, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const FormattedText message(format, arguments);
  va_end(arguments);
  const std::lock_guard<std::mutex> lock(log_mutex());
  syslog(priority, "[FcgiApp][%s]:[%d] %s", function, line, message.c_str());
}

int fork_with_log_idle() {
  const std::lock_guard<std::mutex> lock(log_mutex());
  return fork();
}

void write_trace(const char* file, const char* function, int line, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const FormattedText message(format, arguments);
  va_end(arguments);
  std::fprintf(stderr, "\033[1;32m %s\033[0m \033[1;36m[%s:%d]\033[0m \033[1;31m %s\033[0m", file, function, line,
               message.c_str());
}

}  // namespace platform

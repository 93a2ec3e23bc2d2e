// The syslog form that the router's log tools filter by.
#include "platform/log.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>
#include <unistd.h>

namespace platform {
namespace {

// Held while the C library's log is in use, so that fork_with_log_idle can wait for it to be free.
std::mutex& log_mutex() {
  static std::mutex mutex;
  return mutex;
}

// The text that vprintf would print, whatever its length.
[[gnu::format(printf, 1, 0)]] std::string format_text(const char* format, va_list arguments) {
  va_list measured;
  va_copy(measured, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  if (length < 0) return {};
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  std::vsnprintf(text.data(), text.size(), format, arguments);
  text.resize(static_cast<std::size_t>(length));
  return text;
}

}  // namespace

void write_log(int priority, const char* function, int line, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const std::string message = format_text(format, arguments);
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
  const std::string message = format_text(format, arguments);
  va_end(arguments);
  std::fprintf(stderr, "\033[1;32m %s\033[0m \033[1;36m[%s:%d]\033[0m \033[1;31m %s\033[0m", file, function, line,
               message.c_str());
}

}  // namespace platform

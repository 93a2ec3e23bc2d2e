// The one logging facility: syslog lines of the form "[FcgiApp][function]:[line] message".
#pragma once

#include <syslog.h>

namespace platform {

// Use the macros below. `format` is a literal; data goes through its conversions.
[[gnu::format(printf, 4, 5)]] void write_log(int priority, const char* function, int line, const char* format, ...);

// A coloured trace on standard error, as the WAN code and getDeviceId write them.
[[gnu::format(printf, 4, 5)]] void write_trace(const char* file, const char* function, int line, const char* format,
                                               ...);

// Where a message comes from. A small helper that logs for its callers takes one as its last argument, with here() as
// default: its messages then carry the name and line of the caller.
struct LogPlace {
  const char* function;
  int line;

  // Of the call that this stands in, or whose default argument it is.
  static constexpr LogPlace here(const char* function = __builtin_FUNCTION(), int line = __builtin_LINE()) {
    return {function, line};
  }
};

// fork() at a moment when no other thread is logging: a child made while one is would find the log locked for ever.
int fork_with_log_idle();

}  // namespace platform

// Failures (syslog priority 3) and traces (priority 7).
#define log_error(...) ::platform::write_log(LOG_ERR, __func__, __LINE__, __VA_ARGS__)
#define log_debug(...) ::platform::write_log(LOG_DEBUG, __func__, __LINE__, __VA_ARGS__)
// Of a helper, at its caller's place.
#define log_error_at(place, ...) ::platform::write_log(LOG_ERR, (place).function, (place).line, __VA_ARGS__)
#define log_debug_at(place, ...) ::platform::write_log(LOG_DEBUG, (place).function, (place).line, __VA_ARGS__)
// The same, of a helper whose messages are known by the name of the function that it works for.
#define log_error_as(function, ...) ::platform::write_log(LOG_ERR, function, __LINE__, __VA_ARGS__)
#define log_debug_as(function, ...) ::platform::write_log(LOG_DEBUG, function, __LINE__, __VA_ARGS__)
// "\033[1;32m %s\033[0m \033[1;36m[%s:%d]\033[0m \033[1;31m ...\033[0m" with source path, function and line.
#define trace_stderr(...) ::platform::write_trace(__FILE__, __func__, __LINE__, __VA_ARGS__)

// The one logging facility: syslog lines of the form "[FcgiApp][function]:[line] message".
#pragma once

#include <syslog.h>

namespace platform {

// Use the macros below. `format` is a literal; data goes through its conversions.
[[gnu::format(printf, 4, 5)]] void write_log(int priority, const char* function, int line, const char* format, ...);

// A coloured trace on standard error, as the WAN code and getDeviceId write them.
[[gnu::format(printf, 4, 5)]] void write_trace(const char* file, const char* function, int line, const char* format,
                                               ...);

// fork() at a moment when no other thread is logging: a child made while one is would find the log locked for ever.
int fork_with_log_idle();

}  // namespace platform

// Failures (syslog priority 3) and traces (priority 7).
#define log_error(...) ::platform::write_log(LOG_ERR, __func__, __LINE__, __VA_ARGS__)
#define log_debug(...) ::platform::write_log(LOG_DEBUG, __func__, __LINE__, __VA_ARGS__)
// The same, of a helper whose messages are known by the name of the function that it works for.
#define log_error_as(function, ...) ::platform::write_log(LOG_ERR, function, __LINE__, __VA_ARGS__)
#define log_debug_as(function, ...) ::platform::write_log(LOG_DEBUG, function, __LINE__, __VA_ARGS__)
// "\033[1;32m %s\033[0m \033[1;36m[%s:%d]\033[0m \033[1;31m ...\033[0m" with source path, function and line.
#define trace_stderr(...) ::platform::write_trace(__FILE__, __func__, __LINE__, __VA_ARGS__)

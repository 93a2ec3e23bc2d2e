// Messages of what is fuzzed are formatted, which the sanitizers watch, and go nowhere: the machine's log is not ours.
#include <array>
#include <cstdarg>
#include <cstdio>
#include <syslog.h>

extern "C" [[gnu::format(printf, 2, 0)]] void vsyslog(int /*priority*/, const char* format, va_list arguments) {
  std::array<char, 4096> message;
  std::vsnprintf(message.data(), message.size(), format, arguments);
}

extern "C" [[gnu::format(printf, 2, 3)]] void syslog(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  vsyslog(priority, format, arguments);
  va_end(arguments);
}

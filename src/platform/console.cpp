// Messages for whoever watches the serial console.
#include "platform/console.h"

#include <cstdarg>
#include <cstdio>

#include "platform/file.h"

int console_print(const char* format, ...) {
  const platform::FilePtr console = platform::open_file("/dev/console", "w");
  if (!console) return -1;
  va_list arguments;
  va_start(arguments, format);
  const int written = std::vfprintf(console.get(), format, arguments);
  va_end(arguments);
  return written;
}

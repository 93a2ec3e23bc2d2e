// The router's console.
#pragma once

// Writes to /dev/console, opened for the call. The count written, or -1 when the console cannot be opened.
[[gnu::format(printf, 1, 2)]] int console_print(const char* format, ...);

// In the place of jose: hands its input on, and is gone. What is left of a request's time is the path's own.
#include <unistd.h>

int main(void) {
  char text[65536];
  for (ssize_t got = 0; (got = read(STDIN_FILENO, text, sizeof text)) > 0;) {
    if (write(STDOUT_FILENO, text, (size_t)got) != got) return 1;
  }
  return 0;
}

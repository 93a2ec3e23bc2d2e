/* peak COMMAND [ARGUMENT...]: runs it with its output dropped; prints its peak of memory in KiB.
 *
 * A child's peak counts what its parent holds when it is made, so the parent is this program, which holds next to
 * nothing, and not the benchmark. */
#include <fcntl.h>
#include <stdio.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  const pid_t child = fork();
  if (child == 0) {
    const int nothing = open("/dev/null", O_WRONLY);
    if (nothing >= 0 && dup2(nothing, STDOUT_FILENO) >= 0) execv(argv[1], argv + 1);
    _exit(127);
  }
  int status = 0;
  struct rusage usage = {0};
  if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) return 1;
  printf("%ld\n", usage.ru_maxrss);
  return 0;
}

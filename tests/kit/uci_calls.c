// Preloaded into the program under test: keeps which packages of /etc/config it loads and commits, one "load NAME" or
// "commit NAME" a line of /router/uci_calls. They show by their locks: a load's is shared, a commit's exclusive; so the
// loads behind a lookup count too, and it does not matter which UCI library the program is linked to.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/file.h>
#include <unistd.h>

static const char kFolder[] = "/etc/config/";

static void keep(const char* what, const char* package) {
  char line[300];
  const int length = snprintf(line, sizeof line, "%s %.255s\n", what, package);
  const int fd = open("/router/uci_calls", O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  if (fd < 0) return;
  if (write(fd, line, (size_t)length) < 0) perror("uci_calls");
  close(fd);
}

int flock(int fd, int operation) {
  static int (*real)(int, int);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "flock");
  char link[64];
  char path[4096];
  snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
  const int error = errno;
  const ssize_t length = readlink(link, path, sizeof path - 1);
  path[length < 0 ? 0 : length] = '\0';
  if (strncmp(path, kFolder, sizeof kFolder - 1) == 0 && (operation & LOCK_UN) == 0) {
    keep((operation & LOCK_EX) != 0 ? "commit" : "load", path + sizeof kFolder - 1);
  }
  errno = error;
  return real(fd, operation);
}

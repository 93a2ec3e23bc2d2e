/* Preloaded under the `uci` command: makes its n-th writing call fail, or end short, or kills the process there.
 *
 * FAULT_AT=n counts write, fsync, rename, link, ftruncate, fchmod and mkostemp calls on files and folders below
 * FAULT_BELOW from 1; FAULT_KIND is "error" (ENOSPC), "short" (half is written, then ENOSPC) or "kill".
 * FAULT_LOG gets the names of the calls, one a line, so that a test sees their order and knows where to stop. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

static int seen;
static int disk_is_full;

static void* real(const char* name) { return dlsym(RTLD_NEXT, name); }

static int is_below(const char* path) {
  const char* folder = getenv("FAULT_BELOW");
  return folder != NULL && strncmp(path, folder, strlen(folder)) == 0;
}

static int is_watched(int fd) {
  char link[64];
  char path[4096];
  snprintf(link, sizeof(link), "/proc/self/fd/%d", fd);
  const ssize_t length = readlink(link, path, sizeof(path) - 1);
  if (length < 0) return 0;
  path[length] = '\0';
  return is_below(path);
}

static void note(const char* call) {
  const char* path = getenv("FAULT_LOG");
  FILE* file = path != NULL ? fopen(path, "a") : NULL;
  if (file == NULL) return;
  fprintf(file, "%s\n", call);
  fclose(file);
}

/* Whether this call is the one to break. */
static int is_the_one(const char* call) {
  const char* at = getenv("FAULT_AT");
  const char* kind = getenv("FAULT_KIND");
  ++seen;
  note(call);
  if (at == NULL || seen != atoi(at)) return 0;
  if (kind != NULL && strcmp(kind, "kill") == 0) kill(getpid(), SIGKILL);
  errno = ENOSPC;
  return 1;
}

ssize_t write(int fd, const void* data, size_t size) {
  ssize_t (*next)(int, const void*, size_t) = (ssize_t(*)(int, const void*, size_t))real("write");
  if (!is_watched(fd)) return next(fd, data, size);
  if (disk_is_full) {
    errno = ENOSPC;
    return -1;
  }
  if (!is_the_one("write")) return next(fd, data, size);
  const char* kind = getenv("FAULT_KIND");
  if (kind == NULL || strcmp(kind, "short") != 0) return -1;
  disk_is_full = 1;
  return next(fd, data, size / 2);
}

int fsync(int fd) {
  int (*next)(int) = (int (*)(int))real("fsync");
  struct stat status;
  const int is_folder = fstat(fd, &status) == 0 && S_ISDIR(status.st_mode);
  return is_watched(fd) && is_the_one(is_folder ? "fsync folder" : "fsync") ? -1 : next(fd);
}

int rename(const char* from, const char* to) {
  int (*next)(const char*, const char*) = (int (*)(const char*, const char*))real("rename");
  return is_below(to) && is_the_one("rename") ? -1 : next(from, to);
}

int link(const char* from, const char* to) {
  int (*next)(const char*, const char*) = (int (*)(const char*, const char*))real("link");
  return is_below(to) && is_the_one("link") ? -1 : next(from, to);
}

int ftruncate(int fd, off_t size) {
  int (*next)(int, off_t) = (int (*)(int, off_t))real("ftruncate");
  return is_watched(fd) && is_the_one("ftruncate") ? -1 : next(fd, size);
}

int fchmod(int fd, mode_t mode) {
  int (*next)(int, mode_t) = (int (*)(int, mode_t))real("fchmod");
  return is_watched(fd) && is_the_one("fchmod") ? -1 : next(fd, mode);
}

int mkostemp(char* path, int flags) {
  int (*next)(char*, int) = (int (*)(char*, int))real("mkostemp");
  return is_below(path) && is_the_one("mkostemp") ? -1 : next(path, flags);
}

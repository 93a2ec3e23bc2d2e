// Preloaded into the program under test: a wait passes at once and is kept as a call, {"tool": "sleep", "args": ["2"]},
// among the calls of the tools, so that a test sees what was waited for and when, and never waits itself.
//
// Each wait still takes a moment, so that a loop that polls does not eat a processor.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

// Where a long has 32 bits, calls with a time of 64 have names and numbers of their own.
#if defined(__USE_TIME_BITS64) && defined(SYS_clock_gettime64)
#define WITH_TIME(name) "__" name "64"
static const long kGetTime = SYS_clock_gettime64;
static const long kSleep = SYS_clock_nanosleep_time64;
#else
#define WITH_TIME(name) name
static const long kGetTime = SYS_clock_gettime;
static const long kSleep = SYS_clock_nanosleep;
#endif

static const long kMomentNs = 1000000;
static const long long kGrainNs = 50000000;
static const time_t kForEverS = 1000000;

// The programs that the program under test starts bring their own time. A shell that prepares the root and then becomes
// the program hands the preload on.
__attribute__((constructor)) static void keep_to_this_process(void) {
  if (strcmp(program_invocation_short_name, "sh") != 0) unsetenv("LD_PRELOAD");
}

static void take_a_moment(void) {
  const struct timespec moment = {0, kMomentNs};
  syscall(kSleep, CLOCK_MONOTONIC, 0, &moment, NULL);
}

static void keep(const char* tool, time_t seconds, long nanoseconds) {
  char line[128];
  int length = 0;
  if (nanoseconds == 0) {
    length = snprintf(line, sizeof line, "{\"tool\": \"%s\", \"args\": [\"%lld\"]}\n", tool, (long long)seconds);
  } else {
    char fraction[16];
    snprintf(fraction, sizeof fraction, "%09ld", nanoseconds);
    size_t digits = strlen(fraction);
    while (digits > 1 && fraction[digits - 1] == '0') fraction[--digits] = '\0';
    length = snprintf(line, sizeof line, "{\"tool\": \"%s\", \"args\": [\"%lld.%s\"]}\n", tool, (long long)seconds,
                      fraction);
  }
  const int error = errno;
  const int fd = open("/router/calls.jsonl", O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  if (fd >= 0) {
    if (write(fd, line, (size_t)length) < 0) perror("calls.jsonl");
    close(fd);
  }
  errno = error;
}

unsigned int sleep(unsigned int seconds) {
  keep("sleep", (time_t)seconds, 0);
  take_a_moment();
  return 0;
}

int usleep(useconds_t microseconds) {
  keep("sleep", (time_t)(microseconds / 1000000), (long)(microseconds % 1000000) * 1000);
  take_a_moment();
  return 0;
}

int nanosleep(const struct timespec* wanted, struct timespec* left) {
  keep("sleep", wanted->tv_sec, wanted->tv_nsec);
  take_a_moment();
  if (left != NULL) memset(left, 0, sizeof *left);
  return 0;
}

int clock_nanosleep(clockid_t clock, int flags, const struct timespec* wanted, struct timespec* left) {
  struct timespec wait = *wanted;
  if ((flags & TIMER_ABSTIME) != 0) {
    struct timespec now;
    clock_gettime(clock, &now);
    long long nanoseconds = (long long)(wait.tv_sec - now.tv_sec) * 1000000000 + (wait.tv_nsec - now.tv_nsec);
    if (nanoseconds < 0) nanoseconds = 0;
    nanoseconds = (nanoseconds + kGrainNs / 2) / kGrainNs * kGrainNs;  // what was asked for, not what is left of it
    wait.tv_sec = (time_t)(nanoseconds / 1000000000);
    wait.tv_nsec = (long)(nanoseconds % 1000000000);
  }
  keep("sleep", wait.tv_sec, wait.tv_nsec);
  take_a_moment();
  if (left != NULL) memset(left, 0, sizeof *left);
  return 0;
}

// A wait with a deadline for a condition variable is kept as {"tool": "wait", "args": ["1"]}: a notification ends it as
// ever, and its time is over after a moment; where a test says so, its time is never over. This is the deadline instead.
static struct timespec soon_instead_of(const struct timespec* until, clockid_t clock) {
  struct timespec soon;
  clock_gettime(clock, &soon);
  const long long nanoseconds = (long long)(until->tv_sec - soon.tv_sec) * 1000000000 + (until->tv_nsec - soon.tv_nsec);
  const long long seconds = (nanoseconds + 500000000) / 1000000000;
  if (seconds < 1) return *until;
  keep("wait", (time_t)seconds, 0);
  if (access("/router/waits-last", F_OK) == 0) {
    soon.tv_sec += kForEverS;
    return soon;
  }
  soon.tv_nsec += kMomentNs;
  soon.tv_sec += soon.tv_nsec / 1000000000;
  soon.tv_nsec %= 1000000000;
  return soon;
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock, const struct timespec* until) {
  static int (*real)(pthread_cond_t*, pthread_mutex_t*, clockid_t, const struct timespec*);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, WITH_TIME("pthread_cond_clockwait"));
  const struct timespec soon = soon_instead_of(until, clock);
  return real(condition, mutex, clock, &soon);
}

#ifndef __GLIBC__  // musl has no other
int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const struct timespec* until) {
  static int (*real)(pthread_cond_t*, pthread_mutex_t*, const struct timespec*);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "pthread_cond_timedwait");
  const struct timespec soon = soon_instead_of(until, CLOCK_REALTIME);
  return real(condition, mutex, &soon);
}
#endif

// With FAST_TIME_RATE=10 in its environment the program's clock runs ten times as fast, and what it waits for a tool at
// most is over as much sooner.
static long rate(void) {
  static long known;
  if (known == 0) {
    const char* text = getenv("FAST_TIME_RATE");
    known = text == NULL ? 1 : atol(text);
  }
  return known;
}

// A tool that was told to hang says so under the number of its process group, which is that of the child that the
// program has started. The clock of the thread that waits for it then leaps ahead: what is waited for at most is over,
// whatever the machine's load, and no other tool's time passes sooner.
static const long long kLeapNs = 1000000000000;
static const int kSliceMs = 20;
static __thread pid_t last_child;
static __thread long long leapt_ns;

static int is_hanging(void) {
  if (last_child == 0) return 0;
  const int error = errno;
  char mark[64];
  snprintf(mark, sizeof mark, "/router/hanging/%d", (int)last_child);
  const int found = access(mark, F_OK) == 0;
  errno = error;
  return found;
}

// Where a test says so, no child can be made whose arguments hold the text.
static int is_refused_child(char* const argv[]) {
  char text[256];
  const int error = errno;
  const int fd = (int)syscall(SYS_openat, AT_FDCWD, "/router/no-children", O_RDONLY | O_CLOEXEC);
  errno = error;
  if (fd < 0) return 0;
  const ssize_t length = read(fd, text, sizeof text - 1);
  close(fd);
  text[length < 0 ? 0 : length] = '\0';
  for (; *argv != NULL; ++argv) {
    if (strstr(*argv, text) != NULL) return 1;
  }
  return 0;
}

int posix_spawnp(pid_t* child, const char* file, const posix_spawn_file_actions_t* actions, const posix_spawnattr_t* attributes,
                 char* const argv[], char* const environment[]) {
  static int (*real)(pid_t*, const char*, const posix_spawn_file_actions_t*, const posix_spawnattr_t*, char* const[], char* const[]);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "posix_spawnp");
  if (is_refused_child(argv)) return EAGAIN;
  const int error = real(child, file, actions, attributes, argv, environment);
  if (error == 0) last_child = *child;
  return error;
}

int clock_gettime(clockid_t clock, struct timespec* now) {
  const int result = (int)syscall(kGetTime, clock, now);
  if (result != 0 || clock != CLOCK_MONOTONIC || (rate() == 1 && leapt_ns == 0)) return result;
  const long long nanoseconds = ((long long)now->tv_sec * 1000000000 + now->tv_nsec) * rate() + leapt_ns;
  now->tv_sec = (time_t)(nanoseconds / 1000000000);
  now->tv_nsec = (long)(nanoseconds % 1000000000);
  return 0;
}

int poll(struct pollfd* descriptors, nfds_t count, int timeout_ms) {
  static int (*real)(struct pollfd*, nfds_t, int);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "poll");
  if (timeout_ms <= 0) return real(descriptors, count, timeout_ms);
  for (long left_ms = (timeout_ms + rate() - 1) / rate(); left_ms > 0; left_ms -= kSliceMs) {
    const int ready = real(descriptors, count, (int)(left_ms < kSliceMs ? left_ms : kSliceMs));
    const int leaps = is_hanging();
    if (leaps) leapt_ns += kLeapNs;
    if (ready != 0 || leaps) return ready;
  }
  return 0;
}

// The connection that may be given up: that whose limits were set last.
static int silent_client = -1;
static int deaf_client = -1;
static int is_given_up;

int setsockopt(int descriptor, int level, int option, const void* value, socklen_t length) {
  static int (*real)(int, int, int, const void*, socklen_t);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, WITH_TIME("setsockopt"));
  if (level == SOL_SOCKET && option == SO_RCVTIMEO) silent_client = descriptor;
  if (level == SOL_SOCKET && option == SO_SNDTIMEO) deaf_client = descriptor;
  is_given_up = 0;
  return real(descriptor, level, option, value, length);
}

// Waits for a client as the kernel would, but until a test says that the time of this one is over. 0 then.
static int wait_for_client(int descriptor, short event) {
  struct pollfd client = {descriptor, event, 0};
  while (poll(&client, 1, kSliceMs) == 0) {
    if (is_given_up || unlink("/router/client-is-given-up") == 0) {
      is_given_up = 1;
      errno = EAGAIN;
      return 0;
    }
  }
  return 1;
}

ssize_t read(int descriptor, void* buffer, size_t size) {
  static ssize_t (*real)(int, void*, size_t);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "read");
  if (descriptor == silent_client && !wait_for_client(descriptor, POLLIN)) return -1;
  return real(descriptor, buffer, size);
}

ssize_t write(int descriptor, const void* buffer, size_t size) {
  static ssize_t (*real)(int, const void*, size_t);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "write");
  if (descriptor != deaf_client) return real(descriptor, buffer, size);
  while (1) {
    const ssize_t sent = send(descriptor, buffer, size, MSG_DONTWAIT);
    if (sent >= 0) return sent;
    if (errno == ENOTSOCK) return real(descriptor, buffer, size);
    if ((errno != EAGAIN && errno != EWOULDBLOCK) || !wait_for_client(descriptor, POLLOUT)) return -1;
  }
}

// Where a test says so, no thread and no copy of the program can be made, as at the limit of processes.
static int is_refused(const char* switch_file) {
  if (access(switch_file, F_OK) != 0) return 0;
  errno = EAGAIN;
  return 1;
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*work)(void*), void* argument) {
  static int (*real)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "pthread_create");
  return is_refused("/router/no-threads") ? EAGAIN : real(thread, attributes, work, argument);
}

pid_t fork(void) {
  static pid_t (*real)(void);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "fork");
  return is_refused("/router/no-forks") ? -1 : real();
}

// A timer is kept as {"tool": "timer", "args": ["20"]} and goes off after a moment. Disarming one is not kept.
int timer_settime(timer_t timer, int flags, const struct itimerspec* wanted, struct itimerspec* old) {
  static int (*real)(timer_t, int, const struct itimerspec*, struct itimerspec*);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, WITH_TIME("timer_settime"));
  if (wanted->it_value.tv_sec == 0 && wanted->it_value.tv_nsec == 0) return real(timer, flags, wanted, old);
  keep("timer", wanted->it_value.tv_sec, wanted->it_value.tv_nsec);
  struct itimerspec soon = *wanted;
  soon.it_value = (struct timespec){0, kMomentNs};
  return real(timer, flags & ~TIMER_ABSTIME, &soon, old);
}

// So is one that the kernel keeps; it goes off again as soon.
int timerfd_settime(int timer, int flags, const struct itimerspec* wanted, struct itimerspec* old) {
  static int (*real)(int, int, const struct itimerspec*, struct itimerspec*);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, WITH_TIME("timerfd_settime"));
  keep("timer", wanted->it_value.tv_sec, wanted->it_value.tv_nsec);
  const struct timespec moment = {0, 20 * kMomentNs};
  const struct timespec never = {0, 0};
  const struct itimerspec soon = {wanted->it_interval.tv_sec == 0 ? never : moment, moment};
  return real(timer, flags, &soon, old);
}

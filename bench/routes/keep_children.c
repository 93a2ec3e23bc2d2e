// Preloaded into the program: keeps each child that an answer waits for, with its arguments, in /router/children. A
// record is a line "CHILD words" and the words, each as "length\n" and its bytes. The first byte of an answer is kept
// as a line "ANSWER": what follows it, and what other threads and daemons start, holds no client up.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <spawn.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

static FILE* open_list(void) { return fopen("/router/children", "ae"); }

static void keep(char* const argv[]) {
  static pid_t program = 0;
  if (program == 0) program = getpid();
  if (gettid() != program) return;
  FILE* file = open_list();
  if (file == NULL) return;
  int words = 0;
  while (argv[words] != NULL) ++words;
  fprintf(file, "CHILD %d\n", words);
  for (int word = 0; word < words; ++word) fprintf(file, "%zu\n%s\n", strlen(argv[word]), argv[word]);
  fclose(file);
}

int posix_spawnp(pid_t* child, const char* file, const posix_spawn_file_actions_t* actions,
                 const posix_spawnattr_t* attributes, char* const argv[], char* const environment[]) {
  static int (*real)(pid_t*, const char*, const posix_spawn_file_actions_t*, const posix_spawnattr_t*, char* const[],
                     char* const[]);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "posix_spawnp");
  keep(argv);
  return real(child, file, actions, attributes, argv, environment);
}

int FCGX_PutStr(const char* text, int length, void* stream) {
  static int (*real)(const char*, int, void*);
  if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "FCGX_PutStr");
  FILE* file = open_list();
  if (file != NULL) {
    fputs("ANSWER\n", file);
    fclose(file);
  }
  return real(text, length, stream);
}

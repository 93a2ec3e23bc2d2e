// The floor of a route: runs the children that the program ran for it, bare, one after the other, with the same
// arguments and input: once for each line of standard input. A round prints the nanoseconds that it took, and the
// microseconds of processor time of the children and of this program, which does nothing but start and reap them.
//
//   bare_children LIST     LIST: records as keep_children writes them, each followed by "length\n" and the bytes of its
//                          standard input
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iostream>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

struct Child {
  std::vector<std::string> words;
  std::string input;
};

std::string read_text(std::istream& list) {
  std::size_t length = 0;
  list >> length;
  list.ignore(1);
  std::string text(length, '\0');
  list.read(text.data(), static_cast<std::streamsize>(length));
  list.ignore(1);
  return text;
}

std::vector<Child> read_list(const char* path) {
  std::vector<Child> children;
  std::ifstream list(path);
  for (std::string mark; list >> mark && mark == "CHILD";) {
    std::size_t words = 0;
    list >> words;
    Child& child = children.emplace_back();
    for (; words > 0; --words) child.words.push_back(read_text(list));
    child.input = read_text(list);
  }
  return children;
}

// Inputs are those of requests: they fit a pipe's buffer.
void run(const Child& child) {
  std::array<int, 2> input{};
  std::array<int, 2> output{};
  if (pipe2(input.data(), O_CLOEXEC) != 0 || pipe2(output.data(), O_CLOEXEC) != 0) std::exit(1);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
  std::vector<char*> words;
  for (const std::string& word : child.words) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  pid_t pid = -1;
  const int error = posix_spawnp(&pid, words[0], &actions, nullptr, words.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(input[0]);
  close(output[1]);
  if (error == 0 && write(input[1], child.input.data(), child.input.size()) < 0) errno = 0;
  close(input[1]);
  std::array<char, 65536> piece{};
  while (read(output[0], piece.data(), piece.size()) > 0) continue;
  close(output[0]);
  if (error == 0) waitpid(pid, nullptr, 0);
}

long long processor_us(int whose) {
  rusage used{};
  getrusage(whose, &used);
  return (used.ru_utime.tv_sec + used.ru_stime.tv_sec) * 1'000'000LL + used.ru_utime.tv_usec + used.ru_stime.tv_usec;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::signal(SIGPIPE, SIG_IGN);
  const std::vector<Child> children = read_list(argv[1]);
  for (std::string line; std::getline(std::cin, line);) {
    const long long own = processor_us(RUSAGE_SELF);
    const long long theirs = processor_us(RUSAGE_CHILDREN);
    const auto begin = std::chrono::steady_clock::now();
    for (const Child& child : children) run(child);
    const auto taken = std::chrono::steady_clock::now() - begin;
    std::printf("%lld %lld %lld\n", static_cast<long long>(std::chrono::nanoseconds(taken).count()),
                processor_us(RUSAGE_CHILDREN) - theirs, processor_us(RUSAGE_SELF) - own);
    std::fflush(stdout);
  }
}

// What a FastCGI responder costs that does nothing: a fixed answer, with the headers of ours. For /api/v1/ntp, the
// answer is what `jose` prints for it, started and reaped in the plainest way.
#include <array>
#include <cstdio>
#include <cstring>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

#include <fcgiapp.h>

extern char** environ;

namespace {

constexpr std::string_view kHeaders = "Content-Type: application/json\r\nStatus: 200 OK\r\n\r\n";
constexpr std::string_view kAnswer = R"({ "result": 0, "version": 1, "enable": 1, "server": "ntp.example.jp" })";

void put(FCGX_Request& request, std::string_view text) {
  FCGX_PutStr(text.data(), static_cast<int>(text.size()), request.out);
}

void put_what_jose_prints(FCGX_Request& request) {
  std::array<int, 2> input{};
  std::array<int, 2> output{};
  if (pipe(input.data()) != 0 || pipe(output.data()) != 0) return;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, input[1]);
  std::array<char, 5> name{"jose"};
  std::array<char*, 2> words{name.data(), nullptr};
  pid_t child = -1;
  const bool started = posix_spawnp(&child, words[0], &actions, nullptr, words.data(), environ) == 0;
  posix_spawn_file_actions_destroy(&actions);
  close(input[0]);
  close(output[1]);
  if (started && write(input[1], kAnswer.data(), kAnswer.size()) < 0) std::perror("write");
  close(input[1]);
  std::array<char, 4096> text;
  for (ssize_t got = 0; (got = read(output[0], text.data(), text.size())) > 0;) {
    put(request, {text.data(), static_cast<std::size_t>(got)});
  }
  close(output[0]);
  if (started) waitpid(child, nullptr, 0);
}

}  // namespace

int main() {
  FCGX_Init();
  FCGX_Request request;
  FCGX_InitRequest(&request, STDIN_FILENO, 0);
  while (FCGX_Accept_r(&request) == 0) {
    put(request, kHeaders);
    const char* uri = FCGX_GetParam("REQUEST_URI", request.envp);
    if (uri != nullptr && std::strcmp(uri, "/api/v1/ntp") == 0) {
      put_what_jose_prints(request);
    } else {
      put(request, kAnswer);
    }
    FCGX_Finish_r(&request);
  }
}

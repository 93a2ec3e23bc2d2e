// The FastCGI responder: accepts one request after another on the socket that the web server passed as descriptor 0.
#include <csignal>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <fcgiapp.h>

#include "answer/answer.h"
#include "command_line.h"
#include "platform/log.h"
#include "platform/memory.h"
#include "platform/startup.h"
#include "request/connection.h"
#include "request/dispatch.h"

namespace {

constexpr int kFastCgiSocket = STDIN_FILENO;  // FCGI_LISTENSOCK_FILENO of the protocol

// Moves the listening socket away from descriptor 0 and marks it close-on-exec, so that no child ever holds it;
// descriptor 0 becomes /dev/null. Returns the socket's new number, or 0 when it has to stay.
int hide_listening_socket() {
  const int moved = fcntl(kFastCgiSocket, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (moved < 0) return kFastCgiSocket;
  const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
  if (null < 0 || dup2(null, STDIN_FILENO) < 0) {
    close(moved);
    return kFastCgiSocket;
  }
  if (null != STDIN_FILENO) close(null);
  return moved;
}

// What fails behind its answer, as work that cannot be started any more, has said all that it has to say. So has a
// request that was ended.
void answer_failure(FCGX_Request* request) {
  if (request->out != nullptr && !has_answer_begun()) answer_plain(request, answers::kUnusable);
}

// No exception leaves a request: answers are complete before their first byte is written, so a client is told of the
// failure, or has its answer whole. The loop lives on.
void dispatch_guarded(FCGX_Request* request) {
  expect_answer();
  try {
    dispatch_request(request);
  } catch (const std::exception& error) {
    log_error("request failed: %s\n", error.what());
    answer_failure(request);
  } catch (...) {
    log_error("request failed: %s\n", "no standard exception");
    answer_failure(request);
  }
}

}  // namespace

// libfcgi accepts with accept(), which would leave a connection open in a child that another thread starts before it
// can be marked. It binds to this definition instead of the C library's: close-on-exec from the first instant, and
// given up when its peer falls silent, in the parameters too, which libfcgi reads before anybody else sees the
// connection. It asks the kernel itself: accept4() of some C libraries falls back on accept(), which is this one.
extern "C" int accept(int socket, sockaddr* address, socklen_t* length) {
  const int connection = static_cast<int>(syscall(SYS_accept4, socket, address, length, SOCK_CLOEXEC));
  if (connection >= 0) limit_silence(connection);
  return connection;
}

int main(int argc, char** argv) {
  platform::open_standard_descriptors();
  if (const auto status = handle_command_line(argc, argv)) return *status;
  std::signal(SIGCHLD, SIG_DFL);  // children are always waited for; an inherited SIG_IGN would reap them first
  platform::return_large_blocks();
  platform::provide_path();
  platform::keep_own_files_private();
  platform::sign_messages();
  platform::tell_of_unwritable_packages();
  const int listening_socket = hide_listening_socket();
  FCGX_Init();
  FCGX_Request request;
  FCGX_InitRequest(&request, listening_socket, 0);
  platform::return_free_memory();
  while (FCGX_Accept_r(&request) == 0) {
    dispatch_guarded(&request);
    FCGX_Finish_r(&request);
    platform::return_free_memory();
  }
  std::perror("FCGX_Accept_r");
  return 0;
}

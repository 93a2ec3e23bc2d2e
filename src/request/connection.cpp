// Limits of a connection, kept by the kernel.
#include "request/connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

void limit_silence(int connection) {
  constexpr timeval kToSend{.tv_sec = 10, .tv_usec = 0};
  constexpr timeval kToRead{.tv_sec = 30, .tv_usec = 0};
  setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &kToSend, sizeof kToSend);
  setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &kToRead, sizeof kToRead);
}

bool has_left(int connection) {
  pollfd peer{.fd = connection, .events = 0, .revents = 0};
  return poll(&peer, 1, 0) > 0 && (peer.revents & (POLLHUP | POLLERR)) != 0;
}

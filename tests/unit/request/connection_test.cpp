// A connection's patience, and whether its peer is still there.
#include "request/connection.h"

#include <array>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

class Connection : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_.data()), 0); }
  void TearDown() override {
    close(ours());
    close(peers());
  }
  [[nodiscard]] int ours() const { return ends_[0]; }
  [[nodiscard]] int peers() const { return ends_[1]; }
  [[nodiscard]] time_t limit_s(int option) const {
    timeval limit{};
    socklen_t size = sizeof limit;
    EXPECT_EQ(getsockopt(ours(), SOL_SOCKET, option, &limit, &size), 0);
    return limit.tv_sec;
  }
  std::array<int, 2> ends_{};
};

TEST_F(Connection, WaitsLongerForAReaderThanForASender) {
  EXPECT_EQ(limit_s(SO_RCVTIMEO), 0);
  limit_silence(ours());
  EXPECT_EQ(limit_s(SO_RCVTIMEO), 10);
  EXPECT_EQ(limit_s(SO_SNDTIMEO), 30);
}

TEST_F(Connection, HasItsPeerUntilThatCloses) {
  EXPECT_FALSE(has_left(ours()));
  ASSERT_EQ(write(peers(), "x", 1), 1);
  EXPECT_FALSE(has_left(ours()));
  ASSERT_EQ(shutdown(peers(), SHUT_WR), 0);
  EXPECT_FALSE(has_left(ours())) << "who has sent all may still read";
  ASSERT_EQ(shutdown(peers(), SHUT_RD), 0);
  EXPECT_TRUE(has_left(ours()));
}

}  // namespace

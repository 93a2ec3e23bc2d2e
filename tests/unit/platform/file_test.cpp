// Small files and owning handles.
#include "platform/file.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

constexpr const char* kPath = "/tmp/file_test";

TEST(ReadFile, ReadsWholeFilesAndBoundedHeads) {
  const std::string text = std::string("a\0b", 3) + std::string(100000, 'x');
  ASSERT_TRUE(platform::write_file(kPath, text));
  EXPECT_EQ(platform::read_file(kPath), text);
  EXPECT_EQ(platform::read_file(kPath, 3), std::string("a\0b", 3));
  std::remove(kPath);
  EXPECT_EQ(platform::read_file(kPath), std::nullopt);
  EXPECT_EQ(platform::read_file("/tmp"), std::nullopt);
}

TEST(WriteFile, ReplacesAndTellsFailures) {
  ASSERT_TRUE(platform::write_file(kPath, "long content"));
  ASSERT_TRUE(platform::write_file(kPath, "short"));
  EXPECT_EQ(platform::read_file(kPath), "short");
  EXPECT_FALSE(platform::write_file("/tmp/no/such/folder", "x"));
  EXPECT_FALSE(platform::write_file("/dev/full", "x"));
  EXPECT_TRUE(platform::file_exists(kPath));
  std::remove(kPath);
  EXPECT_FALSE(platform::file_exists(kPath));
}

TEST(UniqueFd, ClosesWhatItOwnsOnce) {
  const int raw = open("/dev/null", O_RDONLY);
  {
    platform::UniqueFd first(raw);
    platform::UniqueFd second(std::move(first));
    EXPECT_FALSE(first.valid());  // NOLINT(bugprone-use-after-move): that is the point
    EXPECT_EQ(second.get(), raw);
  }
  EXPECT_EQ(fcntl(raw, F_GETFD), -1);
}

TEST(OpenFile, IsCloseOnExec) {
  const platform::FilePtr file = platform::open_file("/dev/null", "r");
  ASSERT_TRUE(file);
  EXPECT_NE(fcntl(fileno(file.get()), F_GETFD) & FD_CLOEXEC, 0);
}

}  // namespace

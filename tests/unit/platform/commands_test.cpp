// Commands with their result conventions.
#include <array>
#include <string>

#include <gtest/gtest.h>

#include "system_helpers.h"

namespace {

TEST(OsSystem, AnswersOneForStatusZero) {
  EXPECT_EQ(os_system("true"), 1);
  EXPECT_EQ(os_system("false"), 0);
  EXPECT_EQ(os_system(""), 0);
  EXPECT_EQ(os_system("kill -9 $$"), 0);
}

TEST(OsExec, AnswersOneForStatusZeroAndParsesNothing) {
  EXPECT_TRUE(os_exec({"test", "$(echo a)", "=", "$(echo a)"}));
  EXPECT_FALSE(os_exec({"false"}));
  EXPECT_FALSE(os_exec({}));
  EXPECT_FALSE(os_exec({"no-such-tool-anywhere"}));
}

TEST(ExecuteCmd, CopiesTheFirstLineAndPads) {
  std::array<char, 8> out;
  out.fill('#');
  EXPECT_EQ(execute_cmd("printf 'ab\\r\\nsecond\\n'", out.data(), out.size()), 0);
  EXPECT_EQ(std::string(out.data(), out.size()), std::string("ab\0\0\0\0\0\0", 8));
}

TEST(ExecuteCmd, LeavesTheBufferWhenTheLineIsLongerThanIt) {
  std::array<char, 4> out{'k', 'e', 'p', 't'};
  EXPECT_EQ(execute_cmd("echo 12345", out.data(), out.size()), 0);
  EXPECT_EQ(std::string(out.data(), out.size()), "kept");
  EXPECT_EQ(execute_cmd("echo 1234", out.data(), out.size()), 0);
  EXPECT_EQ(std::string(out.data(), out.size()), "1234");
}

TEST(ExecuteCmd, LeavesTheBufferWhenNothingIsPrinted) {
  std::array<char, 4> out{'k', 'e', 'p', 0};
  EXPECT_EQ(execute_cmd("true", out.data(), out.size()), 0);
  EXPECT_STREQ(out.data(), "kep");
}

TEST(ExecuteCmd, FailsWithoutACommand) {
  std::array<char, 4> out{};
  EXPECT_EQ(execute_cmd(nullptr, out.data(), out.size()), 1);
  EXPECT_EQ(execute_cmd("", out.data(), out.size()), 1);
}

}  // namespace

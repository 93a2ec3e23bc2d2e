// The one door for child processes.
#include "platform/process.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <new>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/text.h"

namespace {

using platform::run;
using platform::run_shell;

TEST(Run, LeavesNoChildBehindWhenItsReaderThrows) {
  const auto reader = [](std::string_view) -> bool { throw std::bad_alloc(); };
  EXPECT_THROW(run({"echo", "x"}, {.reader = reader}), std::bad_alloc);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST(Run, PassesEveryArgumentWhole) {
  const std::string hostile = "a'b\"c`d`$(e);f\ng\\h%n *";
  const platform::ProcessResult result = run({"printf", "[%s][%s]", hostile, ""});
  EXPECT_TRUE(result.succeeded());
  EXPECT_EQ(result.output, "[" + hostile + "][]");
}

TEST(Run, MovesInputAndOutputOfAnySize) {
  const std::string text(std::size_t{3} << 20, 'x');
  const platform::ProcessResult result = run({"cat"}, {.input = text});
  EXPECT_TRUE(result.succeeded());
  EXPECT_EQ(result.output.size(), text.size());
}

TEST(Run, GivesAChildWithoutInputTheEndOfTheFile) { EXPECT_EQ(run({"cat"}).output, ""); }

TEST(Run, OutlivesAChildThatDoesNotReadItsInput) {
  const std::string text(std::size_t{1} << 20, 'x');
  EXPECT_TRUE(run({"true"}, {.input = text}).succeeded());
}

TEST(Run, TellsExitStatusAndSignals) {
  EXPECT_EQ(run_shell("exit 3").exit_status(), 3);
  EXPECT_FALSE(run_shell("exit 3").succeeded());
  EXPECT_EQ(run_shell("kill -9 $$").exit_status(), -1);
}

TEST(Run, CountsAMissingToolAsStatus127) {
  const platform::ProcessResult result = run({"no-such-tool-anywhere"});
  EXPECT_TRUE(result.started);
  EXPECT_EQ(result.exit_status(), 127);
  EXPECT_EQ(result.output, "");
}

TEST(Run, DoesNotStartAnEmptyCommand) {
  EXPECT_FALSE(run({}).started);
  EXPECT_FALSE(run({""}).started);
}

TEST(Run, LeavesTheChildOnlyItsStandardStreams) {
  const int inherited = open("/dev/null", O_RDONLY);  // on purpose not close-on-exec
  ASSERT_GE(inherited, 0);
  const platform::ProcessResult result = run_shell("ls /proc/self/fd");
  close(inherited);
  EXPECT_EQ(result.output, "0\n1\n2\n3\n");  // 3 is ls reading the folder
}

TEST(Run, HandsEveryPieceToTheReader) {
  std::size_t bytes = 0;
  const platform::ProcessResult result = run_shell("head -c 300000 /dev/zero", {.reader = [&](std::string_view piece) {
                                                     bytes += piece.size();
                                                     return true;
                                                   }});
  EXPECT_TRUE(result.succeeded());
  EXPECT_EQ(bytes, 300000U);
  EXPECT_TRUE(result.output.empty());
}

TEST(Run, EndsAWriterWhoseReaderHasEnough) {
  const platform::ProcessResult result = run({"yes"}, {.reader = [](std::string_view) { return false; }});
  EXPECT_TRUE(result.started);
  EXPECT_FALSE(result.succeeded());
}

TEST(Run, KeepsNoMoreOutputThanItIsAskedFor) {
  const platform::ProcessResult cut =
      run_shell("printf 0123456789; echo end >&2", {.drop_errors = true, .max_output = 4});
  EXPECT_EQ(cut.output, "0123");
  EXPECT_TRUE(cut.output_cut);
  EXPECT_TRUE(cut.succeeded());  // it was read to its end
  const platform::ProcessResult whole = run_shell("printf 0123", {.max_output = 4});
  EXPECT_EQ(whole.output, "0123");
  EXPECT_FALSE(whole.output_cut);
}

TEST(Run, ClosesThePipeOfAToolThatNeverStopsPrinting) {
  const platform::ProcessResult result = run({"yes"});
  EXPECT_EQ(result.output.size(), platform::kOutputMax);
  EXPECT_TRUE(result.output_cut);
  EXPECT_FALSE(result.succeeded());
}

// `oflag=direct` makes packets of what is written into the pipe, so that each piece that is read is one of them. On a
// busy machine that may take longer than a command has.
TEST(Run, TellsACutOutputEvenWhereThePiecesFillTheBoundExactly) {
  constexpr std::size_t kBound = std::size_t{64} << 20;
  platform::ProcessResult cut;
  std::thread without_limits([&cut] {
    platform::lift_command_limits();
    cut = run({"dd", "if=/dev/zero", "bs=4096", "count=16385", "oflag=direct"},
              {.drop_errors = true, .max_output = kBound});
  });
  without_limits.join();
  EXPECT_EQ(cut.output.size(), kBound);
  EXPECT_TRUE(cut.output_cut);
}

TEST(Run, DropsStandardErrorWhereItIsAskedTo) {
  ::testing::internal::CaptureStderr();
  run_shell("echo seen >&2");
  run_shell("echo dropped >&2", {.drop_errors = true});
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "seen\n");
}

TEST(Run, GivesTheChildAProcessGroupOfItsOwn) {
  const platform::ProcessResult result = run_shell("echo $$; cut -d' ' -f5 /proc/$$/stat");
  const std::vector<std::string> lines = platform::split_lines(result.output);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0], lines[1]);
}

TEST(Run, RestoresTheCallersSignalMask) {
  run({"true"});
  sigset_t blocked;
  pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
  EXPECT_EQ(sigismember(&blocked, SIGPIPE), 0);
}

}  // namespace

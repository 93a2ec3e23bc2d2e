// What the process needs before it does anything else. What changes the process is tried in one of its own.
#include "platform/startup.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/child_umask.h"

namespace {

[[noreturn]] void end_well_if(bool is_right) { std::_Exit(is_right ? 0 : 1); }

// The process of a death test is started anew: nothing that ran before has a thread or a setting in it.
class StartedProcess : public testing::Test {
 protected:
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

bool is_open(int descriptor) { return fcntl(descriptor, F_GETFD) >= 0; }

TEST_F(StartedProcess, OpensWhatIsClosedOfItsStandardDescriptors) {
  const auto look = [] {
    const int next = dup(STDIN_FILENO);
    close(next);
    for (const int descriptor : {STDIN_FILENO, STDERR_FILENO}) close(descriptor);
    platform::open_standard_descriptors();
    const bool all_open = is_open(STDIN_FILENO) && is_open(STDOUT_FILENO) && is_open(STDERR_FILENO);
    const bool takes_writes = write(STDERR_FILENO, "x", 1) == 1;
    end_well_if(all_open && takes_writes && dup(STDIN_FILENO) == next);
  };
  EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

TEST(ProvidePath, GivesARoutersPathWhereThereIsNone) {
  const std::string before = std::getenv("PATH");
  for (const char* none : {"", static_cast<const char*>(nullptr)}) {
    if (none == nullptr)
      unsetenv("PATH");
    else
      setenv("PATH", none, 1);
    platform::provide_path();
    EXPECT_STREQ(std::getenv("PATH"), "/usr/sbin:/usr/bin:/sbin:/bin");
  }
  setenv("PATH", "/own", 1);
  platform::provide_path();
  EXPECT_STREQ(std::getenv("PATH"), "/own");
  setenv("PATH", before.c_str(), 1);
}

TEST_F(StartedProcess, LeavesItsChildrenTheUmaskOfTheStart) {
  const auto look = [] {
    umask(022);
    platform::keep_own_files_private();
    mode_t of_children = 0;
    {
      const platform::ChildUmask guard;
      of_children = umask(022);
    }
    end_well_if(of_children == 022 && umask(0) == 077);
  };
  EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

}  // namespace

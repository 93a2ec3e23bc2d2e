// The umask of children. What is set stays set, so each test is a process of its own.
#include "platform/child_umask.h"

#include <cstdlib>
#include <optional>
#include <sys/stat.h>

#include <gtest/gtest.h>

namespace {

mode_t current() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

[[noreturn]] void end_well_if(bool is_right) { std::_Exit(is_right ? 0 : 1); }

// The process of a death test is started anew: nothing that ran before has a thread or a setting in it.
class ChildUmaskProcess : public testing::Test {
 protected:
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(ChildUmaskProcess, IsTheProgramsOwnUntilItIsSet) {
  const auto look = [] {
    umask(027);
    const platform::ChildUmask guard;
    end_well_if(current() == 027);
  };
  EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

TEST_F(ChildUmaskProcess, HoldsForAsLongAsItLives) {
  const auto look = [] {
    umask(077);
    platform::set_child_umask(022);
    const bool before = current() == 077;
    std::optional<platform::ChildUmask> guard(std::in_place);
    const bool within = current() == 022;
    guard.reset();
    end_well_if(before && within && current() == 077);
  };
  EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

}  // namespace

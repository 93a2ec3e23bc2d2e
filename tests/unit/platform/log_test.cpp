// Where messages come from.
#include "platform/log.h"

#include <gtest/gtest.h>

namespace {

platform::LogPlace helper(platform::LogPlace place = platform::LogPlace::here()) { return place; }

platform::LogPlace second_helper(platform::LogPlace place = platform::LogPlace::here()) { return helper(place); }

platform::LogPlace caller() { return helper(); }

TEST(LogPlace, OfAHelperIsItsCallers) {
  EXPECT_STREQ(caller().function, "caller");
  EXPECT_EQ(helper().line, __LINE__);
}

TEST(LogPlace, IsHandedOn) {
  EXPECT_STREQ(second_helper().function, "TestBody");
  EXPECT_EQ(second_helper().line, __LINE__);
}

}  // namespace

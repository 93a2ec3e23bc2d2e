// The file of the weekly reboot.
#include "system/reboot_schedule.h"

#include <gtest/gtest.h>

namespace {

using reboot::parse_schedule;

TEST(ParseSchedule, ReadsWhatIsWritten) {
  const auto schedule = parse_schedule("1 3 2359");
  ASSERT_TRUE(schedule);
  EXPECT_EQ(schedule->status, 1);
  EXPECT_EQ(schedule->day_of_week, 3);
  EXPECT_EQ(schedule->time, "2359");
}

TEST(ParseSchedule, TakesAnyBlanksAndIgnoresWhatFollows) {
  const auto schedule = parse_schedule("\r\n 0\t7\n 0100 and more");
  ASSERT_TRUE(schedule);
  EXPECT_EQ(schedule->status, 0);
  EXPECT_EQ(schedule->day_of_week, 7);
  EXPECT_EQ(schedule->time, "0100");
}

TEST(ParseSchedule, BoundsEveryValue) {
  const auto schedule = parse_schedule("999999999 -99999999 12345678");
  ASSERT_TRUE(schedule);
  EXPECT_EQ(schedule->status, 999999999);
  EXPECT_EQ(schedule->day_of_week, -99999999);
  EXPECT_EQ(schedule->time, "1234");
  EXPECT_EQ(parse_schedule("12345678901234567890"), (reboot::Schedule{123456789, 12345678, "90"})) << "in pieces";
}

TEST(ParseSchedule, TakesNothingThatIsCut) {
  for (const char* text : {"", " ", "\n", "1", "1 3", "1 3 ", "x 3 0100", "1 x 0100", "%n %n %n", "\xff\xfe"}) {
    EXPECT_FALSE(parse_schedule(text)) << text;
  }
  EXPECT_FALSE(parse_schedule(std::string("1 3\0 0100", 9))) << "a text ends at its first NUL";
}

}  // namespace

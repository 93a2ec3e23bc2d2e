// Splitting of log lines.
#include "system/log_line.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "captured_log.h"

namespace {

struct Case {
  const char* line;
  const char* time;
  const char* category;
  const char* message;
};

TEST(FillLogMsgValue, SplitsALine) {
  for (const Case& expected : std::vector<Case>{
           {"2026-01-02 03:04:05 [system] up", "2026-01-02 03:04:05", "[system]", "up"},
           {"[system] up", "", "[system]", "up"},
           {" [system]   up  ", "", "[system]", "up  "},
           {"t [a][b] c]", "t", "[a]", "[b] c]"},
           {"t []", "t", "[]", ""},
           {"01/02 03:04:05 AM   wireless up", "01/02 03:04:05 AM", "[wlan]", "wireless up"},
           {"x PM y AM wireless [a]", "x PM y AM", "[wlan]", "wireless [a]"},
           {"wirelessPM", "wirelessPM", "[wlan]", ""},
       }) {
    LogFields fields;
    EXPECT_EQ(fill_log_msg_value(expected.line, fields), 0) << expected.line;
    EXPECT_STREQ(fields.time.data(), expected.time) << expected.line;
    EXPECT_STREQ(fields.category.data(), expected.category) << expected.line;
    EXPECT_EQ(fields.message, expected.message) << expected.line;
  }
}

TEST(FillLogMsgValue, KeepsTheTailOfALongerValue) {
  LogFields fields;
  fill_log_msg_value("long-time [long-tag] a", fields);
  fill_log_msg_value("t [x] b", fields);
  EXPECT_STREQ(fields.time.data(), "tong-time");
  EXPECT_STREQ(fields.category.data(), "[x]ng-tag]");
  EXPECT_EQ(fields.message, "b");
}

TEST(FillLogMsgValue, NeverCutsInsideACharacter) {
  LogFields fields;
  const std::string sixty_two(62, 't');
  EXPECT_EQ(fill_log_msg_value(sixty_two + "é [" + sixty_two.substr(1) + "é] " + std::string(254, 'm') + "é", fields),
            0);
  EXPECT_EQ(fields.time.data(), sixty_two);
  EXPECT_EQ(fields.category.data(), "[" + sixty_two.substr(1));
  EXPECT_EQ(fields.message, std::string(254, 'm'));
}

TEST(FillLogMsgValue, TellsOnceOfEachKindOfLineThatDoesNotSplit) {
  CapturedLog log;
  LogFields fields;
  for (const char* line : {"none", "", "open [only", "wireless", "none again", "[", "wireless again"}) {
    EXPECT_EQ(fill_log_msg_value(line, fields), 1) << line;
  }
  EXPECT_EQ(log.texts(), (std::vector<std::string>{"Can't find character '[' in \"none\"",
                                                   "Can't find character ']' in \"open [only\"",
                                                   "unknow format of log mesg of wlan\n"}));
  LogFields of_the_next_request;
  EXPECT_EQ(fill_log_msg_value("%n%s", of_the_next_request), 1);
  EXPECT_EQ(log.texts(), std::vector<std::string>{"Can't find character '[' in \"%n%s\""});
}

}  // namespace

// The lines of a topology dump as they are kept.
#include "mesh/dump_lines.h"

#include <gtest/gtest.h>

namespace {

TEST(DumpLines, AreThoseOfTheText) {
  const DumpLines lines("first\n\n  third \r\nlast");
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0], "first");
  EXPECT_EQ(lines[1], "");
  EXPECT_EQ(lines[2], "  third \r");
  EXPECT_EQ(lines[3], "last");
  EXPECT_TRUE(DumpLines("").empty());
  EXPECT_EQ(DumpLines("\n").size(), 1U);
}

TEST(DumpLines, DropTheBlanksOfABridgedAddressAlone) {
  struct Row {
    const char* line;
    const char* kept;
  };
  for (const Row& row : {Row{"        02:00:00:00:00:0a    12 \t     Remote", "02:00:00:00:00:0a 12 Remote"},
                         Row{"02:00:00:00:00:0A 1 Remote", "02:00:00:00:00:0A 1 Remote"}}) {
    EXPECT_EQ(DumpLines(row.line)[0], row.kept);
  }
  for (const char* line :
       {"  02:00:00:00:00:0a  1  Remote ", "  02:00:00:00:00:0a  1  Remote\r", "  02:00:00:00:00:0a  1  Remote  x",
        "  02:00:00:00:00:0a  x  Remote", "  02:00:00:00:00:0a    Remote", "  02:00:00:00:00:0  1  Remote",
        "  02:00:00:00:00:0g  1  Remote", "  02:00:00:00:00:0a  1  Local", "  02:00:00:00:00:0a",
        "  Interface name   Medium Type  MAC Address"}) {
    EXPECT_EQ(DumpLines(line)[0], line);
  }
}

}  // namespace

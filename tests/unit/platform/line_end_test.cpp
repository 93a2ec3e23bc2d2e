// Ends of lines.
#include <string>

#include <gtest/gtest.h>

#include "system_helpers.h"

namespace {

TEST(TrimLineEnd, CutsAtTheFirstLineEndAndTellsTheLengthBefore) {
  struct Row {
    const char* text;
    const char* cut;
    std::size_t result;
  };
  for (const Row& row :
       {Row{"abc\r\nd", "abc", 6}, Row{"abc\nd", "abc", 5}, Row{"abc", "abc", 3}, Row{"", "", 0}, Row{"\n", "", 1}}) {
    std::string text = row.text;
    EXPECT_EQ(trim_line_end(text.data()), row.result);
    EXPECT_STREQ(text.c_str(), row.cut);
  }
}

}  // namespace

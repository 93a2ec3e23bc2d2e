// The small rules of the MLO network's writers.
#include "wireless/setting/mlo_write.h"

#include <string>

#include <gtest/gtest.h>

namespace {

TEST(EscapeSingleQuotes, ExpandsEachToFourCharacters) {
  std::string out;
  EXPECT_EQ(escape_single_quotes("it's", out, kEscapedPasswordSize), 0);
  EXPECT_EQ(out, R"(it'\''s)");
  EXPECT_EQ(escape_single_quotes("", out, kEscapedPasswordSize), 0);
  EXPECT_EQ(out, "");
}

TEST(EscapeSingleQuotes, FailsOnBoundsAndNothing) {
  std::string out = "x";
  EXPECT_NE(escape_single_quotes(nullptr, out, kEscapedPasswordSize), 0);
  EXPECT_EQ(out, "");
  EXPECT_NE(escape_single_quotes("a", out, kEscapedPasswordSize - 1), 0);
  EXPECT_EQ(escape_single_quotes(std::string(65, '\'').c_str(), out, kEscapedPasswordSize), 0);
  EXPECT_EQ(out.size(), 260U);
  EXPECT_NE(escape_single_quotes(std::string(66, '\'').c_str(), out, kEscapedPasswordSize), 0);
  EXPECT_NE(escape_single_quotes(std::string(255, '\'').c_str(), out, kEscapedPasswordSize), 0);
  EXPECT_EQ(escape_single_quotes(std::string(260, 'a').c_str(), out, kEscapedPasswordSize), 0);
  EXPECT_NE(escape_single_quotes(std::string(261, 'a').c_str(), out, kEscapedPasswordSize), 0);
}

}  // namespace

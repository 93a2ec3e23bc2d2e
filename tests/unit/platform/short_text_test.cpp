// Texts of a small bound.
#include "platform/short_text.h"

#include <unordered_set>

#include <gtest/gtest.h>

namespace {

using platform::ShortText;

TEST(ShortText, HoldsWhatItIsGivenUpToItsBound) {
  ShortText<4> text;
  EXPECT_TRUE(text.empty());
  EXPECT_STREQ(text.c_str(), "");
  text = "12345";
  EXPECT_EQ(text, "1234");
  EXPECT_STREQ(text.c_str(), "1234");
  text = std::string("ab");
  EXPECT_EQ(text.size(), 2U);
  EXPECT_STREQ(text.c_str(), "ab") << "nothing is left of the longer one";
  EXPECT_EQ(ShortText<4>(std::string_view("a\0b", 3)).size(), 3U);
}

TEST(ShortText, IsComparedAndHashedByItsText) {
  ShortText<8> one("12345678");
  one = "12";
  EXPECT_EQ(one, ShortText<8>("12"));
  EXPECT_FALSE(one == ShortText<8>("123"));
  const std::unordered_set<ShortText<8>> set{one};
  EXPECT_TRUE(set.contains("12"));
  EXPECT_FALSE(set.contains("1"));
}

}  // namespace

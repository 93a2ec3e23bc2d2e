// Bodies: what is claimed, and what arrives.
#include "request/body.h"

#include <string>

#include <gtest/gtest.h>

#include "asked_request.h"

namespace {

// What is read of `sent` when this length is claimed.
std::optional<Body> read(const char* claimed, const std::string& sent) {
  AskedRequest request({}, sent);
  return read_body(request, claimed);
}

TEST(ReadBody, TakesWhatIsClaimedAndArrives) {
  const std::string sent("a\0b%s", 5);
  const auto body = read("5", sent);
  ASSERT_TRUE(body);
  EXPECT_EQ(body->raw().bytes, sent);
  EXPECT_TRUE(body->raw().is_complete);
  EXPECT_EQ(body->size(), 5U);
}

TEST(ReadBody, TakesNoMoreThanIsClaimed) {
  const auto body = read("3", "abcdef");
  ASSERT_TRUE(body);
  EXPECT_EQ(body->raw().bytes, "abc");
  EXPECT_TRUE(body->raw().is_complete);
  EXPECT_STREQ(body->c_str(), "abc");
}

TEST(ReadBody, KnowsThatLessArrivedThanWasClaimed) {
  for (const char* claimed : {"7", "70000", "2147483647", "99999999999999999999"}) {
    const auto body = read(claimed, "abcdef");
    ASSERT_TRUE(body) << claimed;
    EXPECT_EQ(body->raw().bytes, "abcdef") << claimed;
    EXPECT_FALSE(body->raw().is_complete) << claimed;
    EXPECT_STREQ(body->c_str(), "abcdef") << claimed;
  }
}

TEST(ReadBody, IsCompleteOnlyWhenThereIsSomething) {
  const auto body = read("7", "");
  ASSERT_TRUE(body);
  EXPECT_EQ(body->size(), 0U);
  EXPECT_STREQ(body->c_str(), "");
  EXPECT_FALSE(body->raw().is_complete);
}

TEST(ReadBody, ReadsNothingWithoutALength) {
  for (const char* claimed : {"0", "", "-1", "-99999999999999999999", "x", "x7", " "}) {
    EXPECT_FALSE(read(claimed, "abcdef")) << claimed;
  }
}

TEST(ReadBody, TakesALengthAsItsLeadingDigitsTell) {
  EXPECT_EQ(read(" 3", "abcdef")->raw().bytes, "abc");
  EXPECT_EQ(read("3x", "abcdef")->raw().bytes, "abc");
}

TEST(ReadBody, GathersABodyOfManyPieces) {
  std::string sent(150'000, '\0');
  for (std::size_t at = 0; at < sent.size(); ++at) sent[at] = static_cast<char>('a' + at % 23);
  const auto body = read("150000", sent);
  ASSERT_TRUE(body);
  EXPECT_TRUE(body->raw().bytes == sent);
  EXPECT_TRUE(body->raw().is_complete);
}

}  // namespace

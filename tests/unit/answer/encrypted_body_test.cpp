// The quoting of texts for a shell word. What `jose` is given is asked over FastCGI, with a recording one.
#include "encrypted_body.h"

#include <gtest/gtest.h>

namespace {

TEST(EscapeSingleQuotes, ReplacesEachQuoteByFourCharacters) {
  EXPECT_EQ(escape_single_quotes(""), "");
  EXPECT_EQ(escape_single_quotes("plain $(x) \\ \""), "plain $(x) \\ \"");
  EXPECT_EQ(escape_single_quotes("Bob's"), R"(Bob'\''s)");
  EXPECT_EQ(escape_single_quotes("''"), R"('\'''\'')");
}

TEST(EncryptContentApi, FailsWithoutAText) { EXPECT_FALSE(encrypt_content_api(nullptr)); }
TEST(DecryptContentApi, FailsWithoutAText) { EXPECT_FALSE(decrypt_content_api(nullptr, 0)); }

}  // namespace

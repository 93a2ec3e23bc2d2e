// Texts through a `jose` of the test's own. What the program gives it is asked over FastCGI, with a recording one.
#include "answer/encrypted_body.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_log.h"
#include "fake_tools.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Jose : public ::testing::Test {
 protected:
  void provide(const std::string& script) { tools_.provide("jose", script); }
  static std::string encrypt(const std::string& text) { return encrypt_content_api(text.c_str()).value_or("(none)"); }
  static std::string decrypt(const std::string& text) {
    return decrypt_content_api(text.c_str(), text.size()).value_or("(none)");
  }
  FakeTools tools_;
  CapturedLog log_;
};

TEST_F(Jose, GetsATextWithASingleQuoteUnchanged) {
  provide("cat\n");
  for (const char* text : {"{\"ssid\": \"Bob's\"}", "'", "''", "';touch /tmp/x;'", "$(x) `y` \\ \" %s\n%n"}) {
    EXPECT_EQ(encrypt(text), text);
    EXPECT_EQ(decrypt(text), text);
  }
}

TEST_F(Jose, EncryptsAnEmptyTextLikeAnyOther) {
  provide("[ -z \"$(cat)\" ] && echo encrypted nothing\n");
  EXPECT_EQ(encrypt(""), "encrypted nothing\n");
}

TEST_F(Jose, GivesTextsBackWholeWhateverTheirLength) {
  provide("cat\n");
  for (const std::size_t length : {1023U, 1024U, 4095U, 4096U, 5000U, 131072U, 3000000U}) {
    const std::string text(length, 'x');
    EXPECT_TRUE(encrypt(text) == text) << length;
    EXPECT_TRUE(decrypt(text) == text) << length;
  }
  EXPECT_THAT(log_.texts(), IsEmpty());
}

TEST_F(Jose, ThatPrintsNothingYieldsNoneInsteadOfAnEmptyText) {
  for (const char* script : {"exit 1\n", "exit 0\n", "cat >/dev/null\n", "kill -9 $$\n"}) {
    provide(script);
    EXPECT_EQ(encrypt("text"), "(none)") << script;
    EXPECT_EQ(log_.texts().back(), "Failed to allocate memory for jwe_str.\n");
    EXPECT_EQ(decrypt("text"), "(none)") << script;
    EXPECT_EQ(log_.texts().back(), "Failed to allocate memory for plaintext_str.\n");
  }
}

TEST_F(Jose, ThatFailsYieldsNoPlaintextWhateverItPrinted) {
  for (const char* status : {"exit 1", "exit 3", "exit 255", "kill -9 $$"}) {
    provide(std::string("printf '{\"status\":1}'; ") + status + "\n");
    EXPECT_EQ(decrypt("text"), "(none)") << status;
    EXPECT_THAT(log_.texts(), ElementsAre(::testing::StartsWith("jose printed 12 bytes and ended with status ")));
  }
}

TEST_F(Jose, CountsByItsOutputAndNotByItsStatusWhenItEncrypts) {
  provide("printf partly; exit 3\n");
  EXPECT_EQ(encrypt("text"), "partly");
  EXPECT_THAT(log_.texts(), ElementsAre("jose printed 6 bytes and ended with status 3\n"));
}

TEST_F(Jose, GetsABodyWithoutTheWhiteSpaceAroundIt) {
  provide("printf '[%s]' \"$(cat; echo .)\"\n");
  for (const char* text : {"a b", "a b\n", "a b\r\n", " \t\r\n\v\fa b\f\v\n\r\t "})
    EXPECT_EQ(decrypt(text), "[a b.]") << text;
  EXPECT_EQ(encrypt(" a b\t"), "[ a b\t.]");
  EXPECT_EQ(decrypt(" \n"), "[.]");
}

TEST_F(Jose, IsNotAskedWithoutAText) {
  EXPECT_FALSE(encrypt_content_api(nullptr));
  EXPECT_THAT(log_.texts(), ElementsAre("Jwe encrypt_str is null!\n"));
  EXPECT_FALSE(decrypt_content_api(nullptr, 0));
  EXPECT_THAT(log_.texts(), ElementsAre("Jwe decrypt_str is null!\n"));
}

TEST(EscapeSingleQuotes, ReplacesEachQuoteByFourCharacters) {
  EXPECT_EQ(escape_single_quotes(""), "");
  EXPECT_EQ(escape_single_quotes("plain $(x) \\ \""), "plain $(x) \\ \"");
  EXPECT_EQ(escape_single_quotes("Bob's"), R"(Bob'\''s)");
  EXPECT_EQ(escape_single_quotes("''"), R"('\'''\'')");
}

}  // namespace

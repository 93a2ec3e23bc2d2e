// Bodies that somebody without the key has changed, against the real `jose`, called as the simulated router calls it.
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "answer/encrypted_body.h"
#include "platform/file.h"
#include "platform/process.h"

namespace {

constexpr const char* kText = R"({"status": 0})";
constexpr const char* kSimulator = UNIT_FIXTURES "/../../../../simulator";

// One body for each encryption and each way of writing it.
struct Form {
  const char* encryption;
  bool compact;
};

void PrintTo(const Form& form, std::ostream* out) { *out << form.encryption << (form.compact ? " compact" : " JSON"); }

class ForgedBody : public ::testing::TestWithParam<Form> {
 protected:
  void SetUp() override {
    namespace fs = std::filesystem;
    if (!fs::exists("/machine/usr/bin/jose")) GTEST_SKIP() << "jose is missing: script/setup installs it";
    fs::create_directories("/router/lent");
    fs::create_directories(folder_);
    fs::create_directories("/etc/lighttpd");
    if (!fs::is_symlink("/router/lent/jose")) fs::create_symlink("/machine/usr/bin/jose", "/router/lent/jose");
    const fs::path simulator = fs::path(kSimulator).lexically_normal();
    fs::copy_file(simulator / "tools/jose", folder_ + "/jose", fs::copy_options::overwrite_existing);
    fs::copy_file(simulator / "factory/files/etc/lighttpd/jwe-key.json", "/etc/lighttpd/jwe-key.json",
                  fs::copy_options::overwrite_existing);
    setenv("PATH", (folder_ + ":" + path_).c_str(), 1);
    body_ = encrypted();
    ASSERT_EQ(decrypt(body_), kText) << body_;
  }
  void TearDown() override {
    setenv("PATH", path_.c_str(), 1);
    std::filesystem::remove_all(folder_);
  }

  // A body as a client with the key makes it. Few rounds of key derivation: a test asks hundreds of times.
  static std::string encrypted() {
    const std::string header = std::string(R"({"protected":{"alg":"PBES2-HS256+A128KW","p2c":1000,"enc":")") +
                               GetParam().encryption + R"("}})";
    std::vector<std::string> argv{"/machine/usr/bin/jose",     "jwe", "enc", "-i", header, "-I-", "-k",
                                  "/etc/lighttpd/jwe-key.json"};
    if (GetParam().compact) argv.emplace_back("-c");
    return platform::run(argv, {.input = kText}).output;
  }
  static std::string decrypt(const std::string& text) {
    return decrypt_content_api(text.c_str(), text.size()).value_or("(none)");
  }
  // The places of the base64url characters of `body_`, in runs: the five parts of the compact form, the values of JSON.
  std::vector<std::pair<std::size_t, std::size_t>> parts() const {
    std::vector<std::pair<std::size_t, std::size_t>> found;
    const auto is_part = [](char c) {
      return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '_';
    };
    for (std::size_t at = 0; at < body_.size();) {
      const std::size_t begin = at;
      while (at < body_.size() && is_part(body_[at])) ++at;
      const std::size_t length = at - begin;
      if (length >= 16) found.emplace_back(begin, length);
      at += length == 0 ? 1 : 0;
    }
    return found;
  }

  std::string folder_ = "/tmp/forged_body_test";
  std::string path_ = getenv("PATH");
  std::string body_;
};

TEST_P(ForgedBody, WithOneCharacterOfAnyPartChangedYieldsNothing) {
  const auto found = parts();
  ASSERT_EQ(found.size(), GetParam().compact ? 5U : 6U) << body_;  // JSON has the key's salt in a place of its own
  for (const auto& [begin, length] : found) {
    // The last character of a part may carry bits that say nothing; the one before it never does.
    for (const std::size_t at : {begin, begin + length / 4, begin + length / 2, begin + length - 2}) {
      std::string forged = body_;
      forged[at] = forged[at] == 'A' ? 'B' : 'A';
      EXPECT_EQ(decrypt(forged), "(none)") << "at " << at << " of " << body_;
    }
  }
}

TEST_P(ForgedBody, WithAPartTakenAwayOrEmptyYieldsNothing) {
  for (const auto& [begin, length] : parts()) {
    EXPECT_EQ(decrypt(std::string(body_).erase(begin, length)), "(none)") << begin;
    EXPECT_EQ(decrypt(std::string(body_).erase(begin, length / 4 * 4)), "(none)") << begin;
  }
}

TEST_P(ForgedBody, ThatEndsTooEarlyYieldsNothing) {
  const std::string whole = body_.substr(0, body_.find_last_not_of("\r\n") + 1);
  // Each byte once in each form: the second encryption takes the same way through the tool.
  const std::size_t step = std::string_view(GetParam().encryption) == "A256GCM" ? 1 : 11;
  for (std::size_t length = 0; length < whole.size(); length += step) {
    EXPECT_EQ(decrypt(whole.substr(0, length)), "(none)") << length << " bytes of " << whole;
  }
}

TEST_P(ForgedBody, WithWhiteSpaceAroundItIsTheBodyItWas) { EXPECT_EQ(decrypt("\r\n" + body_ + " \t\r\n"), kText); }

INSTANTIATE_TEST_SUITE_P(Encryptions, ForgedBody,
                         ::testing::Values(Form{"A128CBC-HS256", true}, Form{"A128CBC-HS256", false},
                                           Form{"A256GCM", true}, Form{"A256GCM", false}),
                         [](const auto& form) {
                           const std::string name = form.param.encryption;
                           return name.substr(0, name.find('-')) + (form.param.compact ? "Compact" : "Json");
                         });

}  // namespace

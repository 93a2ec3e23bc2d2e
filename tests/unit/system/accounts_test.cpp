// The administrator's user name and password: what is refused, what is stored, and where the password goes.
#include <filesystem>
#include <string>
#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "asked_request.h"
#include "fake_tools.h"
#include "handlers.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::stored;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

constexpr const char* kPasswordFile = "/etc/apfpasswd";
constexpr const char* kUnusable = R"({"result": 1})";

class Accounts : public ::testing::Test {
 protected:
  void SetUp() override {
    router_state::config("rpcd", package_text::section("login", "log_on", {{"username", "before"}}));
    router_state::write(kPasswordFile, "old\n");
    tools_.provide("jose", "cat");
    tools_.provide("passwd", "cat >/tmp/passwd.stdin");
    tools_.provide("/usr/sbin/refreshPasswd.sh");
  }
  void TearDown() override {
    router_state::no_config("rpcd");
    std::filesystem::remove(kPasswordFile);
    std::filesystem::remove("/tmp/passwd.stdin");
  }
  static std::string ask(const char* body) { return answer_of(handle_set_accounts, body); }
  FakeTools tools_;
};

TEST_F(Accounts, AreStoredInAllTheirPlaces) {
  EXPECT_EQ(ask(R"({"newUser":"admin2","newPassword":"it's $(x) %s","oldPassword":"never compared"})"),
            R"({"result": 0, "version": 1, "waitTime": 10})");
  EXPECT_EQ(stored("rpcd", "log_on", "username"), "admin2");
  EXPECT_EQ(platform::read_file(kPasswordFile), "it's $(x) %s\n");
  EXPECT_EQ(platform::read_file("/tmp/passwd.stdin"), "it's $(x) %s\nit's $(x) %s\n");
  struct stat status {};
  ASSERT_EQ(stat(kPasswordFile, &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(Accounts, AreToldToTheOthersAfterTheAnswerAndInNoArgument) {
  ask(R"({"newUser":"u","newPassword":"secret"})");
  EXPECT_THAT(tools_.calls(),
              ElementsAre("passwd admin", ::testing::StartsWith("jose jwe enc "), "/usr/sbin/refreshPasswd.sh"));
}

TEST_F(Accounts, TakeTextsUpToTheirBounds) {
  const std::string user(15, 'u');
  const std::string password(63, 'p');
  const auto body = [](const std::string& name, const std::string& text) {
    return R"({"newUser":")" + name + R"(","newPassword":")" + text + R"("})";
  };
  EXPECT_NE(ask(body(user, password).c_str()), kUnusable);
  EXPECT_EQ(ask(body(user + 'u', password).c_str()), kUnusable);
  EXPECT_EQ(ask(body(user, password + 'p').c_str()), kUnusable);
}

TEST_F(Accounts, AreLeftAsTheyAreByWhatIsRefused) {
  const std::string long_password(64, 'p');
  for (const std::string& body :
       {std::string("{"), std::string("[]"), std::string("{}"), std::string(R"({"newUser":"u"})"),
        std::string(R"({"newPassword":"p"})"), std::string(R"({"newUser":"","newPassword":"p"})"),
        std::string(R"({"newUser":"u","newPassword":""})"), std::string(R"({"newUser":"a\nb","newPassword":"p"})"),
        std::string(R"({"newUser":"u","newPassword":"a\nb"})"), std::string(R"({"newUser":"u","newPassword":"a\rb"})"),
        R"({"newUser":"u","newPassword":"p","oldPassword":")" + long_password + "\"}"}) {
    EXPECT_EQ(ask(body.c_str()), kUnusable) << body;
  }
  EXPECT_EQ(ask(nullptr), kUnusable);
  EXPECT_EQ(stored("rpcd", "log_on", "username"), "before");
  EXPECT_EQ(platform::read_file(kPasswordFile), "old\n");
  EXPECT_THAT(tools_.calls(), Not(Contains("passwd admin")));
}

TEST_F(Accounts, AreLeftAsTheyAreWhereThePasswordCannotBeWritten) {
  std::filesystem::remove(kPasswordFile);
  std::filesystem::create_directories(std::string(kPasswordFile) + "/full");
  EXPECT_EQ(ask(R"({"newUser":"u","newPassword":"p"})"), kUnusable);
  EXPECT_EQ(stored("rpcd", "log_on", "username"), "before");
  EXPECT_THAT(tools_.calls(), Not(Contains("passwd admin")));
  std::filesystem::remove_all(kPasswordFile);
}

}  // namespace

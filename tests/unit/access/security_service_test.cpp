// The security service of one brand: its state and its switch.
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "answer/json_reading.h"
#include "asked_request.h"
#include "fake_tools.h"
#include "handlers.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::section;
using package_text::stored;
using ::testing::UnorderedElementsAre;

constexpr const char* kScript = "/opt/sense/bin/sense_init.sh";
constexpr const char* kVersion = "/opt/sense/VERSION";

class SecurityService : public ::testing::Test {
 protected:
  void SetUp() override {
    router_state::brand(1);
    router_state::config("system", "config system\n\toption op_mode 'router'\n");
    router_state::config("fsecure", section("sense", "sense", {{"disabled", "0"}}));
    router_state::write(kVersion, "3.1.4\n");
    tools_.provide("jose", "cat");
    tools_.provide("ps");
    tools_.provide(kScript);
  }
  void TearDown() override {
    for (const char* package : {"system", "fsecure"}) router_state::no_config(package);
    for (const char* path : {"/tmp/deviceid", kVersion}) std::filesystem::remove(path);
  }
  static json::Document read() { return json::Document(answer_of(handle_get_fsecure_sense).c_str()); }
  static std::string set(const char* body) { return answer_of(handle_set_fsecure_sense, body); }
  FakeTools tools_;
};

TEST_F(SecurityService, TellsItsStateAndVersion) {
  EXPECT_EQ(read()->number("result"), 0);
  EXPECT_EQ(read()->number("version"), 1);
  EXPECT_EQ(read()->number("enable"), 1);
  EXPECT_EQ(read()->text("sense_ver"), "3.1.4");
  router_state::config("fsecure", section("sense", "sense", {{"disabled", "1"}}));
  EXPECT_EQ(read()->number("enable"), 0);
}

TEST_F(SecurityService, HasAVersionOfFifteenBytesOfWholeCharacters) {
  router_state::write(kVersion, "0123456789abcdef");
  EXPECT_EQ(read()->text("sense_ver"), "0123456789abcde");
  router_state::write(kVersion, "0123456789abcd\xe6\x97\xa5");
  EXPECT_EQ(read()->text("sense_ver"), "0123456789abcd");
}

TEST_F(SecurityService, IsNotInstalledWithoutAVersion) {
  std::filesystem::remove(kVersion);
  EXPECT_EQ(read()->number("result"), 0);
  EXPECT_EQ(read()->number("enable"), -1);
  EXPECT_FALSE(read()->has_any("sense_ver"));
}

TEST_F(SecurityService, IsNotReadWhileItStartsOrStops) {
  tools_.answer("ps", " 9 root /bin/sh /opt/sense/bin/sense_init.sh start");
  EXPECT_EQ(read()->number("result"), 2);
}

TEST_F(SecurityService, CannotBeReadWithoutWhatItIsMadeOf) {
  router_state::write(kVersion, "");
  EXPECT_EQ(read()->number("result"), 1);
  router_state::write(kVersion, "1");
  router_state::config("fsecure", section("sense", "sense", {{"disabled", "no"}}));
  EXPECT_EQ(read()->number("result"), 1);
  router_state::config("fsecure", section("sense", "sense", {{"disabled", "0"}}));
  router_state::brand(0);
  EXPECT_EQ(read()->number("result"), 1);
}

TEST_F(SecurityService, IsSwitchedAndStartedOrStopped) {
  EXPECT_EQ(set(R"({"enable":0})"), R"({"result": 0, "version": 1, "waitTime": 20})");
  EXPECT_EQ(stored("fsecure", "sense", "disabled"), "1");
  EXPECT_EQ(set(R"({"enable":"1"})"), R"({"result": 0, "version": 1, "waitTime": 20})");
  EXPECT_EQ(stored("fsecure", "sense", "disabled"), "0");
  std::vector<std::string> calls;
  while (calls.size() < 2) {
    const std::vector<std::string> more = tools_.awaited_calls();
    if (more.empty()) break;
    for (const std::string& call : more) {
      if (call.starts_with(kScript)) calls.push_back(call);
    }
  }
  EXPECT_THAT(calls, UnorderedElementsAre(std::string(kScript) + " stop", std::string(kScript) + " start"));
}

TEST_F(SecurityService, IsLeftAsItIsByWhatIsRefused) {
  for (const char* body : {"", "[]", "{}", R"({"enable":2})", R"({"enable":"on"})", R"({"enable":null})"})
    EXPECT_EQ(set(body), R"({"result": 1})") << body;
  EXPECT_EQ(set(nullptr), R"({"result": 1})");
  router_state::config("system", "config system\n\toption op_mode 'ap'\n");
  EXPECT_EQ(set(R"({"enable":0})"), R"({"result": 1})");
  router_state::config("system", "config system\n\toption op_mode 'router'\n");
  router_state::brand(0);
  EXPECT_EQ(set(R"({"enable":0})"), R"({"result": 1})");
  EXPECT_EQ(stored("fsecure", "sense", "disabled"), "0");
  EXPECT_THAT(tools_.calls(), ::testing::Each(::testing::StartsWith("jose ")));
}

TEST_F(SecurityService, TellsOfASwitchThatCannotBeStored) {
  router_state::no_config("fsecure");
  EXPECT_EQ(set(R"({"enable":0})"), R"({"result": 2})");
  EXPECT_THAT(tools_.calls(), ::testing::Each(::testing::StartsWith("jose ")));
}

}  // namespace

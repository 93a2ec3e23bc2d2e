// The maker's agents: what the brands tell of them, and which are started and stopped.
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
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* kStartDetails = "/usr/sbin/IDM_from_qv/idm_start";
constexpr const char* kStopDetails = "/usr/sbin/IDM_from_qv/idm_stop";
constexpr const char* kServices = "/etc/init.d/nwm_package";
constexpr const char* kUpdates = "/usr/sbin/hotacron";

class RemoteMaintenance : public ::testing::Test {
 protected:
  void SetUp() override {
    router_state::brand(0);
    router_state::config("hota", section("hota", "info", {{"auto", "1"}}));
    router_state::config("firmware", section("idm", "idm", {{"enabled", "0"}}));
    tools_.provide("jose", "cat");
    tools_.provide("ps");
    for (const char* tool : {kStartDetails, kStopDetails, kServices, kUpdates}) tools_.provide(tool);
  }
  void TearDown() override {
    for (const char* package : {"hota", "firmware"}) router_state::no_config(package);
    std::filesystem::remove("/tmp/deviceid");
  }
  static json::Document read() { return json::Document(answer_of(handle_get_remote_maintenance).c_str()); }
  static int set(const char* body) {
    return json::Document(answer_of(handle_set_remote_maintenance, body).c_str())->number("result").value_or(-1);
  }
  static std::string switches() { return stored("hota", "info", "auto") + stored("firmware", "idm", "enabled"); }
  // Each call as soon as it comes: agents are started beside the request.
  std::vector<std::string> await_calls(std::size_t count) {
    std::vector<std::string> all;
    while (all.size() < count) {
      const std::vector<std::string> calls = tools_.awaited_calls();
      if (calls.empty()) break;
      for (const std::string& call : calls) {
        if (!call.starts_with("jose ")) all.push_back(call);
      }
    }
    return all;
  }
  FakeTools tools_;
};

TEST_F(RemoteMaintenance, IsReadByBrand) {
  EXPECT_EQ(read()->number("result"), 0);
  EXPECT_EQ(read()->number("enable"), 1);
  EXPECT_EQ(read()->number("detailInfoSendEnable"), 0);
  router_state::brand(1);
  EXPECT_EQ(read()->number("enable"), 1);
  EXPECT_FALSE(read()->has_any("detailInfoSendEnable"));
}

TEST_F(RemoteMaintenance, IsNotReadWhileTheUpdatesSwitchAtWork) {
  tools_.answer("ps", "  7 root sh /usr/sbin/hotacron");
  EXPECT_EQ(read()->number("result"), 2);
  EXPECT_FALSE(read()->has_any("enable"));
  tools_.answer("ps", "  7 root grep /usr/sbin/hotacron");
  EXPECT_EQ(read()->number("result"), 0);
}

TEST_F(RemoteMaintenance, CannotBeReadWithoutWhatItIsMadeOf) {
  router_state::config("firmware", "");
  EXPECT_EQ(read()->number("result"), 1);
  router_state::config("hota", section("hota", "info", {{"auto", "yes"}}));
  EXPECT_EQ(read()->number("result"), 1);
  std::filesystem::remove("/tmp/deviceid");
  EXPECT_EQ(read()->number("result"), 1);
}

TEST_F(RemoteMaintenance, StartsAndStopsTheAgents) {
  EXPECT_EQ(set(R"({"enable":1,"detailInfoSendEnable":1})"), 0);
  EXPECT_EQ(switches(), "11");
  EXPECT_THAT(await_calls(2), ::testing::UnorderedElementsAre(kStartDetails, std::string(kServices) + " start"));
  EXPECT_EQ(set(R"({"enable":0,"detailInfoSendEnable":"0"})"), 0);
  EXPECT_EQ(switches(), "00");
  EXPECT_THAT(await_calls(3),
              ::testing::UnorderedElementsAre(kUpdates, kStopDetails, std::string(kServices) + " stop"));
}

TEST_F(RemoteMaintenance, OfABrandWithoutAgentsIsTheUpdatesSwitchAlone) {
  router_state::brand(1);
  EXPECT_EQ(set(R"({"enable":0})"), 0);
  EXPECT_EQ(switches(), "00");
  EXPECT_THAT(tools_.calls(), ElementsAre(kUpdates, StartsWith("jose ")));
  tools_.provide(kUpdates, "exit 1");
  EXPECT_EQ(set(R"({"enable":1})"), 2);
}

TEST_F(RemoteMaintenance, StopsNoFurtherAgentBehindOneThatFails) {
  tools_.provide(kUpdates, "exit 1");
  EXPECT_EQ(set(R"({"enable":0,"detailInfoSendEnable":0})"), 2);
  EXPECT_THAT(tools_.calls(), ElementsAre(kUpdates, StartsWith("jose ")));
}

TEST_F(RemoteMaintenance, IsLeftAsItIsByWhatIsRefused) {
  for (const char* body : {"", "[]", "{}", R"({"enable":1})", R"({"enable":2,"detailInfoSendEnable":1})",
                           R"({"enable":0,"detailInfoSendEnable":"x"})", R"({"detailInfoSendEnable":1})"}) {
    EXPECT_EQ(set(body), 1) << body;
    EXPECT_EQ(switches(), "10") << body;
  }
  EXPECT_EQ(set(nullptr), 1);
  std::filesystem::remove("/tmp/deviceid");
  EXPECT_EQ(set(R"({"enable":0,"detailInfoSendEnable":0})"), 1);
  EXPECT_EQ(switches(), "10");
  EXPECT_THAT(tools_.calls(), ::testing::Each(StartsWith("jose ")));
}

TEST_F(RemoteMaintenance, TellsOfASwitchThatCannotBeStored) {
  router_state::no_config("hota");
  EXPECT_EQ(set(R"({"enable":0,"detailInfoSendEnable":0})"), 2);
  EXPECT_THAT(tools_.calls(), Not(Contains(kUpdates)));
}

}  // namespace

// What the router tells of itself, and what of that can be set.
#include "system/router_info.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_log.h"
#include "fake_tools.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::section;
using package_text::stored;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;

constexpr const char* kCheckResult = "/tmp/inetchkresult.txt";
constexpr const char* kVersionStatus = "/tmp/HotaVersionStatus";
constexpr const char* kGpio = "/sys/kernel/debug/gpio";
constexpr const char* kLed = "/sys/devices/platform/soc@0/soc@0:leds/leds/led_router/brightness";

class RouterInfoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    TearDown();
    router_state::brand(0);
    router_state::config("system", "config system\n\toption op_mode 'router'\n\toption hostname 'Router'\n");
    router_state::config("network", section("interface", "wan", {{"macaddr", "00:11:22:33:44:55"}}));
    router_state::config("hota", section("hota", "info", {{"orvanepathV4", "http://o/"}, {"tesmirpath", "http://t/"}}));
    router_state::config("devicecustom",
                         section("devicecustom", "info", {{"location", "3"}, {"locationCustom", "Attic"}}));
    router_state::config("test", section("test", "test", {{"statusa", "Active"}, {"statusb", "Broken"}}));
    router_state::write("/etc/mtn_version", "1.02.03\r\n");
    router_state::write(kLed, "255\n");
    router_state::write(kGpio, " gpio38  in 0 high 8mA\n gpio39  in 0 low 8mA\n");
    for (const char* tool : {"orvanehota", "tesmirhota", "/usr/sbin/testinfo"}) tools_.provide(tool);
  }
  void TearDown() override {
    for (const char* package : {"system", "network", "hota", "devicecustom", "test", "button_mesh"})
      router_state::no_config(package);
    for (const char* path : {kCheckResult, kVersionStatus, kGpio, "/etc/mtn_version", "/tmp/deviceid"})
      std::filesystem::remove(path);
    std::filesystem::remove_all("/sys/devices/platform");
  }
  static RouterInfo read() {
    RouterInfo info;
    get_routerInfo_list(info);
    return info;
  }
  // The next calls hold this one, or none comes.
  bool is_told(const std::string& call) {
    const std::vector<std::string> calls = tools_.awaited_calls();
    return calls.empty() || std::ranges::find(calls, call) != calls.end();
  }
  FakeTools tools_;
  CapturedLog log_;
};

TEST_F(RouterInfoTest, TellsWhatThePackagesAndFilesHold) {
  const RouterInfo info = read();
  EXPECT_EQ(info.product_id, "0221");
  EXPECT_EQ(info.fw_update_url, "http://o/");
  EXPECT_EQ(info.model, "Router");
  EXPECT_EQ(info.mac_address, "00:11:22:33:44:55");
  EXPECT_EQ(info.fw_version, "1.02.03");
  EXPECT_EQ(info.location, 3);
  EXPECT_EQ(info.location_custom, "Attic");
  EXPECT_EQ(info.led_status, 1);
  EXPECT_EQ(info.image_area_a, "Active");
  EXPECT_EQ(info.image_area_b, "Broken");
  EXPECT_THAT(info.current_date_time, MatchesRegex("[0-9]{4}/[01][0-9]/[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9]"));
  EXPECT_THAT(tools_.calls(), Contains("/usr/sbin/testinfo"));
}

TEST_F(RouterInfoTest, KnowsTheOtherBrandsAddress) {
  router_state::brand(1);
  EXPECT_EQ(read().product_id, "0121");
  EXPECT_EQ(read().fw_update_url, "http://t/");
  router_state::brand(2);
  EXPECT_EQ(read().product_id, "");
  EXPECT_EQ(read().fw_update_url, "");
}

TEST_F(RouterInfoTest, LeavesEmptyWhatCannotBeRead) {
  TearDown();
  const RouterInfo info = read();
  for (const std::string& text :
       {info.fw_update_url, info.model, info.mac_address, info.fw_version, info.location_custom})
    EXPECT_EQ(text, "");
  EXPECT_EQ(info.location, 0);
  EXPECT_EQ(info.current_mode, 0);
  EXPECT_EQ(info.mode_switch_status, -1);
  EXPECT_EQ(info.led_status, 1);
  EXPECT_EQ(info.image_area_a, "Ready");
  EXPECT_EQ(info.image_area_b, "Ready");
  EXPECT_EQ(info.notification, 1);
}

TEST_F(RouterInfoTest, TellsTheModeOfTheUnit) {
  struct Row {
    const char* op_mode;
    int mode;
  };
  for (const Row& row : {Row{"router", 0}, Row{"ap", 1}, Row{"re", 2}, Row{"rep", 0}, Row{"AP", 0}}) {
    router_state::config("system", std::string("config system\n\toption op_mode '") + row.op_mode + "'\n");
    EXPECT_EQ(read().current_mode, row.mode) << row.op_mode;
    EXPECT_EQ(read().mode_switch_status, 0) << row.op_mode;
  }
}

TEST_F(RouterInfoTest, TellsARepeatersModeOfAMeshAgentAlone) {
  router_state::mesh(2, 0, 0);
  EXPECT_EQ(read().current_mode, 2);
  EXPECT_EQ(read().mode_switch_status, 2);
  router_state::mesh(1, 0, 0);
  EXPECT_EQ(read().current_mode, 0);
  router_state::config("button_mesh", section("easymesh", "easymesh", {{"enable", "0"}, {"role", "agent"}}));
  EXPECT_EQ(read().current_mode, 0);
  router_state::config("button_mesh", section("easymesh", "easymesh", {{"enable", "1"}, {"role", "agents"}}));
  EXPECT_EQ(read().current_mode, 0);
}

TEST_F(RouterInfoTest, TellsWhetherTheLightIsOff) {
  struct Row {
    const char* brightness;
    int status;
  };
  for (const Row& row : {Row{"0\n", 0}, Row{"0", 0}, Row{"1\n", 1}, Row{"00\n", 1}, Row{"", 1}}) {
    router_state::write(kLed, row.brightness);
    EXPECT_EQ(read().led_status, row.status) << row.brightness;
  }
}

TEST_F(RouterInfoTest, TellsOfAnUpdateOnlyToWhoIsOnline) {
  struct Row {
    const char* check;
    const char* update;
    int notification;
  };
  for (const Row& row : {Row{"1", "1", 3}, Row{"16\n", "1\n", 3}, Row{"1", "0", 0}, Row{"1", "", 0}, Row{"1", "11", 0},
                         Row{"100", "1", 2}, Row{"2", "1", 1}, Row{"", "1", 1}, Row{"x", "1", 1}}) {
    router_state::write(kCheckResult, row.check);
    router_state::write(kVersionStatus, row.update);
    EXPECT_EQ(read().notification, row.notification) << row.check << ' ' << row.update;
    while (row.notification % 3 == 0 && !is_told("orvanehota -c")) continue;  // the check was started, beside us
  }
}

TEST_F(RouterInfoTest, StartsTheCheckOfItsBrand) {
  EXPECT_EQ(get_hota_status(), 0);
  EXPECT_THAT(tools_.awaited_calls(), ElementsAre("orvanehota -c"));
  router_state::brand(1);
  router_state::write(kVersionStatus, "1");
  EXPECT_EQ(get_hota_status(), 1);
  EXPECT_THAT(tools_.awaited_calls(), ElementsAre("tesmirhota -c"));
  router_state::brand(2);
  EXPECT_EQ(get_hota_status(), 1);
  EXPECT_THAT(tools_.calls(), IsEmpty());
}

TEST_F(RouterInfoTest, StoresWhatIsSet) {
  set_routerInfo_model("It's mine %s");
  EXPECT_EQ(stored("system", "@system[0]", "hostname"), "It's mine %s");
  set_routerInfo_locationCustom("$(reboot)");
  EXPECT_EQ(stored("devicecustom", "info", "locationCustom"), "$(reboot)");
  struct Row {
    int location;
    const char* stored;
  };
  for (const Row& row : {Row{0, "0"}, Row{12, "12"}, Row{1234, "123"}, Row{-1234, "-12"}}) {
    set_routerInfo_location(row.location);
    EXPECT_EQ(stored("devicecustom", "info", "location"), row.stored);
  }
}

TEST_F(RouterInfoTest, TellsOfWhatCannotBeStored) {
  router_state::no_config("system");
  router_state::no_config("devicecustom");
  log_.texts();
  set_routerInfo_model("name");
  EXPECT_THAT(log_.texts(), Contains("set routerInfo model failed.\n"));
  set_routerInfo_location(1);
  EXPECT_THAT(log_.texts(), Contains("set location model failed.\n"));
  set_routerInfo_locationCustom("place");
  EXPECT_THAT(log_.texts(), Contains("set location model failed.\n"));
}

TEST_F(RouterInfoTest, SwitchesTheLight) {
  set_routerInfo_ledStatus(0);
  EXPECT_EQ(platform::read_file(kLed), "0\n");
  set_routerInfo_ledStatus(1);
  EXPECT_EQ(platform::read_file(kLed), "255\n");
  set_routerInfo_ledStatus(7);
  EXPECT_EQ(platform::read_file(kLed), "0\n");
}

}  // namespace

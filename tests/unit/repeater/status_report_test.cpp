// The description of the uplink: by station, by multi-link variant, in the mesh.
#include "repeater/status_report.h"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "answer/json_reading.h"
#include "captured_log.h"
#include "fake_tools.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::section;
using ::testing::Contains;

constexpr const char* kDevices = "/sys/class/net";

class StatusReport : public ::testing::Test {
 protected:
  void SetUp() override {
    tools_.answer("iw", "Connected to aa:bb:cc:dd:ee:0f (on ath03)\n");
    router_state::config("button_mesh", section("easymesh", "easymesh", {{"enable", "0"}, {"mode", "2"}}));
    router_state::config("repacd", section("MAPConfig", "MAPConfig", {{"OnboardingDone", "0"}}));
    uplink("0");
    wireless("");
  }
  void TearDown() override {
    std::filesystem::remove_all(kDevices);
    for (const char* package : {"button_mesh", "repacd", "repeater", "wireless"}) router_state::no_config(package);
  }
  static void uplink(const char* mlo) {
    router_state::config("repeater", section("repeater", "repeater_band", {{"mlo", mlo}}) +
                                         section("compatiMode", "compatiMode", {{"value", "1"}}));
  }
  static void wireless(const std::string& stations) {
    router_state::config("wireless", section("wifi-device", "wifi1", {{"dfs_puncture_en", "1"}}) + stations);
  }
  static std::string station(const char* name, const package_text::Options& options) {
    std::filesystem::create_directories(std::string(kDevices) + "/" + name);
    return section("wifi-iface", name, options);
  }
  static json::Document report() { return json::Document(build_connect_report().text().c_str()); }
  FakeTools tools_;
  CapturedLog log_;
};

TEST_F(StatusReport, OfNoStation) {
  const json::Document document = report();
  EXPECT_EQ(document->number("result"), 0);
  EXPECT_EQ(document->text("ssid"), "");
  EXPECT_EQ(document->text("bssid"), "000000000000");
  EXPECT_EQ(document->number("frequency"), 0);
  EXPECT_EQ(document->number("encryptType"), 2);
  EXPECT_EQ(document->number("multiLinkOperationEnable"), 2);
  EXPECT_EQ(document->number("multiRuEnable"), 1);
  EXPECT_EQ(document->number("easyMeshBackHaulFrequency"), 5);
  EXPECT_EQ(document->number("compatiMode"), 1);
  EXPECT_FALSE(document->has_any("compatiWiFi6Mode")) << "told only where it is there";
}

TEST_F(StatusReport, OfAStationTellsItsBand) {
  struct Row {
    const char* name;
    int frequency;
    const char* encryption;
    int type;
  };
  for (const Row& row : {Row{"ath03", 1, "psk2+ccmp", 1}, Row{"ath13", 2, "none", 0}, Row{"ath23", 3, "ccmp", 2}}) {
    std::filesystem::remove_all(kDevices);
    wireless(station(row.name, {{"ssid", "Its %s"}, {"key", "secret"}, {"encryption", row.encryption}}));
    const json::Document document = report();
    EXPECT_EQ(document->number("result"), 0) << row.name;
    EXPECT_EQ(document->text("ssid"), "Its %s");
    EXPECT_EQ(document->text("encryptKey"), "secret");
    EXPECT_EQ(document->text("bssid"), "AA:BB:CC:DD:EE:0F");
    EXPECT_EQ(document->number("frequency"), row.frequency);
    EXPECT_EQ(document->number("encryptType"), row.type) << row.name;
    EXPECT_EQ(document->number("multiLinkOperationEnable"), 0);
    EXPECT_EQ(document->text(row.frequency == 1 ? "6gMacAddr" : "24gMacAddr"), "000000000000");
  }
}

TEST_F(StatusReport, TellsTheSecurityOfAStationByItsOptions) {
  struct Row {
    const char* name;
    package_text::Options options;
    int type;
  };
  for (const Row& row :
       {Row{"ath03", {{"encryption", "ccmp"}, {"sae", "1"}}, 2}, Row{"ath03", {{"encryption", "ccmp"}}, 0},
        Row{"ath23", {{"encryption", "ccmp"}, {"owe", "1"}}, 0},
        Row{"ath23", {{"encryption", "ccmp"}, {"owe", "0"}}, 2}}) {
    std::filesystem::remove_all(kDevices);
    wireless(station(row.name, row.options));
    EXPECT_EQ(report()->number("encryptType"), row.type) << row.name << row.options.size();
  }
  std::filesystem::remove_all(kDevices);
  wireless(station("ath23", {{"encryption", "psk2+ccmp"}}));
  EXPECT_FALSE(report()->has_any("encryptType")) << "no such security on 6 GHz";
}

TEST_F(StatusReport, IsMarkedWhereSomethingCannotBeRead) {
  wireless(station("ath03", {{"ssid", "net"}, {"encryption", "none"}}));
  EXPECT_EQ(report()->number("result"), 2);
  EXPECT_THAT(log_.texts(), Contains("get ath03 encryptKey failed.\n"));
  for (const char* package : {"button_mesh", "repacd", "repeater", "wireless"}) {
    SetUp();
    std::filesystem::remove_all(kDevices);
    EXPECT_EQ(report()->number("result"), 0);
    router_state::no_config(package);
    EXPECT_EQ(report()->number("result"), 2) << package;
  }
}

TEST_F(StatusReport, OfAMultiLinkUplinkIsThatOfItsFirstStation) {
  struct Row {
    const char* mlo;
    const char* first;
    int code;
  };
  wireless(section("wifi-iface", "ath03", {{"ssid", "first"}, {"key", "k1"}, {"encryption", "psk2+ccmp"}}) +
           section("wifi-iface", "ath13", {{"ssid", "second"}, {"key", "k2"}, {"encryption", "psk2+ccmp"}}));
  for (const Row& row : {Row{"1", "first", 1}, Row{"2", "second", 2}, Row{"3", "first", 3}}) {
    uplink(row.mlo);
    const json::Document document = report();
    EXPECT_EQ(document->text("ssid"), row.first) << row.mlo;
    EXPECT_EQ(document->number("frequency"), 0);
    EXPECT_EQ(document->number("encryptType"), 1);
    EXPECT_EQ(document->number("multiLinkOperationEnable"), row.code);
    EXPECT_EQ(document->text("bssidmlo6g") == "000000000000", row.code == 1) << "a band that it has not";
  }
}

TEST_F(StatusReport, InTheMeshIsTheBackhauls) {
  struct Row {
    const char* mode;
    int frequency;
    int multi_link;
    int backhaul;
  };
  for (const Row& row : {Row{"0", 2, 0, 0}, Row{"1", 0, 1, 4}, Row{"2", 0, 2, 5}}) {
    router_state::config("button_mesh", section("easymesh", "easymesh",
                                                {{"enable", "1"}, {"mode", row.mode}, {"compatiWiFi6Mode", "1"}}));
    const json::Document document = report();
    EXPECT_EQ(document->number("frequency"), row.frequency) << row.mode;
    EXPECT_EQ(document->number("multiLinkOperationEnable"), row.multi_link) << row.mode;
    EXPECT_EQ(document->number("easyMeshBackHaulFrequency"), row.backhaul) << row.mode;
    EXPECT_EQ(document->number("compatiWiFi6Mode"), 1);
    EXPECT_EQ(document->text("ssid"), "") << "before it is onboarded";
    EXPECT_EQ(document->number("encryptType"), 2);
  }
}

}  // namespace

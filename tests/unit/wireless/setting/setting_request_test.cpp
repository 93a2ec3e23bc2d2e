// What a request for the wireless settings is read as, and which of its slots stand for several access points.
#include "wireless/setting/setting_request.h"

#include <string>

#include <gtest/gtest.h>

#include "domain/mesh_codes.h"
#include "wireless/router_state.h"

namespace {

void write_router(const char* op_mode) {
  router_state::config("system", std::string("config system\n\toption op_mode '") + op_mode + "'\n");
  router_state::mesh(kMeshRoleNone, 1, 0);
  router_state::brand(1);
}

std::string body(const std::string& slots, const std::string& members = R"("mesh": 0, "mlo": 0)") {
  return R"({"wirelessConfig": [)" + slots +
         R"(], "bandSteering": 0, "ieee802dot11r": 1, "set2GChannel": 6, "set5GChannel": -1, "set6GChannel": 0, )" +
         members + "}";
}

TEST(ReadSettingRequest, TakesEveryMember) {
  write_router("router");
  const auto request = read_setting_request(
      body(R"({"ssidName": "SSID1", "band": "2.4GHz", "ssidValue": "Name", "ssidStatus": 1, "ssidPassword": "password",
               "wifiSecurity": 4, "wifiStealth": 1, "wpaRekeyInterval": 3600})",
           R"("mesh": 1, "mlo": 3)")
          .c_str());
  ASSERT_TRUE(request.has_value());
  EXPECT_FALSE(request->is_repeater);
  EXPECT_EQ(request->ieee802dot11r, 1);
  EXPECT_EQ(request->channels, (Channels{6, -1, 0}));
  EXPECT_EQ(request->mesh, 1);
  EXPECT_EQ(request->mlo, 3);
  ASSERT_EQ(request->slots.size(), 1U);
  EXPECT_EQ(request->slots[0].name, "SSID1");
  EXPECT_EQ(request->slots[0].band, "2.4GHz");
  const WirelessIfaceInfo& info = request->slots[0].info;
  EXPECT_EQ(info.ssid + " " + info.password, "Name password");
  EXPECT_EQ(info.ssid_status, 1);
  EXPECT_EQ(info.wifi_security, 4);
  EXPECT_EQ(info.wifi_stealth, 1);
  EXPECT_EQ(info.wpa_rekey_interval, 3600);
}

TEST(ReadSettingRequest, AnElementBeginsWithWhatTheOneBeforeLeft) {
  write_router("router");
  const auto request = read_setting_request(
      body(R"({"ssidValue": "One", "wpaRekeyInterval": 599}, {"wpaRekeyInterval": 86400}, {"ssidValue": "Three"})")
          .c_str());
  ASSERT_TRUE(request.has_value());
  ASSERT_EQ(request->slots.size(), 3U);
  const auto said = [&](std::size_t i) {
    return request->slots[i].info.ssid + " " + std::to_string(request->slots[i].info.wpa_rekey_interval);
  };
  EXPECT_EQ(said(0), "One 1800");
  EXPECT_EQ(said(1), "One 86400");
  EXPECT_EQ(said(2), "Three 86400");
  EXPECT_FALSE(request->slots[2].name.has_value());
}

TEST(ReadSettingRequest, ARepeaterHasNoMeshSwitch) {
  write_router("re");
  const auto request = read_setting_request(body("", R"("mlo": 0)").c_str());
  ASSERT_TRUE(request.has_value());
  EXPECT_TRUE(request->is_repeater);
  write_router("router");
  EXPECT_FALSE(read_setting_request(body("", R"("mlo": 0)").c_str()).has_value());
}

TEST(ReadSettingRequest, RefusesWhatCannotBeUsed) {
  write_router("router");
  EXPECT_FALSE(read_setting_request(nullptr).has_value());
  for (const char* text : {"", "x", "[]", "{}", R"({"wirelessConfig": {}})", R"({"wirelessConfig": [1]})"}) {
    EXPECT_FALSE(read_setting_request(text).has_value()) << text;
  }
  EXPECT_FALSE(read_setting_request(body(R"({"ssidValue": "a\u0001b"})").c_str()).has_value());
  ASSERT_TRUE(read_setting_request(body("").c_str()).has_value());
  router_state::no_config("system");
  EXPECT_FALSE(read_setting_request(body("").c_str()).has_value());
  write_router("router");
  router_state::no_config("button_mesh");
  EXPECT_FALSE(read_setting_request(body("").c_str()).has_value());
}

TEST(KindOfSlot, ByNameModeAndSwitch) {
  SettingRequest request;
  SlotRequest slot;
  const auto kind = [&](const char* name, bool is_repeater, int mlo) {
    request.is_repeater = is_repeater;
    request.mlo = mlo;
    slot.name = name;
    return kind_of_slot(request, slot, brands::of_index(1));
  };
  EXPECT_EQ(kind("SSID1", false, 4), SlotKind::kAccessPoint);
  EXPECT_EQ(kind("MLO SSID", false, 4), SlotKind::kMlo);
  EXPECT_EQ(kind("MLO SSID", false, 0), SlotKind::kAccessPoint);
  EXPECT_EQ(kind("MLO SSID", true, 4), SlotKind::kMlo);
  EXPECT_EQ(kind("Mesh SSID", false, 4), SlotKind::kMesh);
  EXPECT_EQ(kind("Mesh SSID", true, 4), SlotKind::kAccessPoint);
}

}  // namespace

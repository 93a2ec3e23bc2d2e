// Every row of the WAN's vocabulary, and what stands beside the rows.
#include "waninfoMethod/wan_modes.h"

#include <map>

#include <gtest/gtest.h>

namespace {

TEST(StoredMode, HasACodeByPrefix) {
  const std::map<std::string, int> rows{{"wb_mode", 8}, {"DHCP", 0},  {"STATIC", 1},  {"PPPOE", 2}, {"MAP-E", 3},
                                        {"DS-Lite", 4}, {"IPIP6", 5}, {"STDPROV", 6}, {"AP", 7}};
  for (const auto& [mode, code] : rows) {
    EXPECT_EQ(change_wan_mode_string_to_int(mode), code) << mode;
    EXPECT_EQ(change_wan_mode_string_to_int(mode + "x"), code) << mode;
    EXPECT_EQ(change_wan_mode_string_to_int(mode.substr(0, mode.size() - 1)), 0) << mode;
  }
  for (const char* mode : {"", "dhcp", "2", " PPPOE"}) EXPECT_EQ(change_wan_mode_string_to_int(mode), 0) << mode;
}

TEST(ModeType, IsALetterOfThree) {
  for (int code = 0; code <= 2; ++code) EXPECT_EQ(get_wan_mode_type(code), 'A') << code;
  for (int code = 3; code <= 7; ++code) EXPECT_EQ(get_wan_mode_type(code), 'B') << code;
  for (const int code : {-2147483647, -1, 8, 9, 2147483647}) EXPECT_EQ(get_wan_mode_type(code), 'N') << code;
}

TEST(TunnelMode, IsOneOfFour) {
  for (const char* mode : {"MAP-E", "DS-Lite", "IPIP6", "STDPROV", "MAP-E2"}) EXPECT_TRUE(is_tunnel_mode(mode)) << mode;
  for (const char* mode : {"", "DHCP", "STATIC", "PPPOE", "AP", "MAP", "DS"})
    EXPECT_FALSE(is_tunnel_mode(mode)) << mode;
}

TEST(FindWanMethod, WalksAllRows) {
  struct Row {
    const char* mode;
    int code;
    const char* display;
  };
  for (const Row& row : {Row{"DHCP", 0, "IPアドレス自動取得"}, Row{"STATIC", 1, "IPアドレス固定設定"},
                         Row{"PPPOE", 2, "PPPoE認証"}, Row{"MAP-E", 3, ""}, Row{"DS-Lite", 4, ""}, Row{"IPIP6", 5, ""},
                         Row{"STDPROV", 6, ""}, Row{"AP", 7, "APモード"}}) {
    const WanMethod method = find_wan_method(row.mode, "router_mode");
    EXPECT_EQ(method.code, row.code) << row.mode;
    EXPECT_EQ(method.display, row.display) << row.mode;
    EXPECT_TRUE(method.known) << row.mode;
    const WanMethod repeater = find_wan_method(row.mode, "wb_mode");
    EXPECT_EQ(repeater.code, 8) << row.mode;
    EXPECT_EQ(repeater.display, "リピーターモード") << row.mode;
  }
}

TEST(FindWanMethod, TakesApModeOnlyFromARouterOrAnAccessPoint) {
  for (const char* button_mode : {"router_mode", "ap_mode"}) EXPECT_EQ(find_wan_method("AP", button_mode).code, 7);
  for (const char* button_mode : {"", "other", "router", "ap"}) {
    const WanMethod method = find_wan_method("AP", button_mode);
    EXPECT_EQ(method.code, 0) << button_mode;
    EXPECT_FALSE(method.known) << button_mode;
  }
}

TEST(FindWanMethod, HasNoRowForAnythingElse) {
  for (const char* mode : {"", "dhcp", "wb_mode", "2"}) {
    const WanMethod method = find_wan_method(mode, "router_mode");
    EXPECT_EQ(method.code, 0) << mode;
    EXPECT_EQ(method.display, "") << mode;
    EXPECT_FALSE(method.known) << mode;
  }
}

TEST(Hb46ppMethod, IsByPrefix) {
  const std::map<std::string, int> rows{{"IPIP6", 3}, {"DS-Lite", 2}, {"MAP-E", 1}, {"MAP-E x", 1},
                                        {"", 0},      {"map-e", 0},   {"None", 0},  {"DS", 0}};
  for (const auto& [mode, code] : rows) EXPECT_EQ(getHb46ppMethod(mode), code) << mode;
}

TEST(IpipService, IsByPrefixAndBack) {
  const std::map<std::string, int> rows{{"v6plus", 1}, {"transix", 2}, {"v6connect", 3}, {"v6plusX", 1},
                                        {"manual", 0}, {"", 0},        {"v6", 0},        {"V6PLUS", 0}};
  for (const auto& [service, code] : rows) EXPECT_EQ(getIpipServiceCode(service), code) << service;
  EXPECT_STREQ(v6ServerMode(1), "v6plus");
  EXPECT_STREQ(v6ServerMode(2), "transix");
  EXPECT_STREQ(v6ServerMode(3), "v6connect");
  for (const int service : {-1, 0, 4, 2147483647}) EXPECT_STREQ(v6ServerMode(service), "manual") << service;
}

TEST(PreviousInternetLineResult, KnowsItsNumbersAlone) {
  const std::map<int, int> rows{{2, 1},  {18, 1}, {34, 1},  {130, 1}, {146, 1}, {162, 1}, {4, 2},
                                {20, 2}, {36, 2}, {132, 2}, {148, 2}, {164, 2}, {65, 3},  {66, 3},
                                {67, 4}, {68, 4}, {71, 5},  {168, 5}, {69, 6}};
  for (int detection = -1; detection <= 300; ++detection) {
    const auto row = rows.find(detection);
    EXPECT_EQ(getPreviousInternetLineResult(detection), row == rows.end() ? 0 : row->second) << detection;
  }
}

std::string display_of(const std::string& service, std::size_t size = 256) {
  std::string out = "before";
  getWanMethodStr(service, out, size);
  return out;
}

TEST(WanMethodStr, NamesEveryProvider) {
  const std::map<std::string, std::string> rows{{"JPNE v6Plus", "v6プラス"},
                                                {"Biglobe IPv6 Option", "IPv6オプション"},
                                                {"OCN Virtual Connect", "OCNバーチャルコネクト"},
                                                {"Freebit IPv6 Premium", "その他MAP-Eサービス"},
                                                {"Unknown MAP-E", "その他MAP-Eサービス"},
                                                {"IMF transix", "transix"},
                                                {"Arteria Networks Xpass", "クロスパス"},
                                                {"Unknown DS-Lite", "その他DS-Liteサービス"},
                                                {"IPoE IPv6 Service", "IPv6 IPoEサービス"},
                                                {"Asahi Net v6Connect", "v6コネクト"}};
  for (const auto& [service, display] : rows) {
    EXPECT_EQ(display_of(service), display);
    EXPECT_EQ(display_of(service + " (anything)"), display);
    const std::string cut = service.substr(0, service.size() - 1);
    EXPECT_EQ(display_of(cut), cut);
  }
}

TEST(WanMethodStr, CopiesAnUnknownServiceUpToTheBound) {
  EXPECT_EQ(display_of(""), "");
  EXPECT_EQ(display_of("My Provider %n"), "My Provider %n");
  EXPECT_EQ(display_of(std::string(300, 'x')), std::string(255, 'x'));
  EXPECT_EQ(display_of("IMF transix", 5), "tran");
}

TEST(WanMethodStr, TakesAProvisionedProviderFromTheParentheses) {
  const std::string method = "Standard Provisioning Method";
  EXPECT_EQ(display_of(method + " (Some Net)"), "Some Net");
  EXPECT_EQ(display_of(method + " (Some Net) (Other)"), "Some Net");
  EXPECT_EQ(display_of(method + "(a(b)c)"), "a(b");
  EXPECT_EQ(display_of(method + " (no end"), "no end");
  EXPECT_EQ(display_of(method + " (" + std::string(150, 'n') + ")"), std::string(99, 'n'));
}

TEST(WanMethodStr, KeepsWhatItHadWithoutAProvider) {
  const std::string method = "Standard Provisioning Method";
  for (const char* rest : {"", " ()", " (", " Some Net)"}) EXPECT_EQ(display_of(method + rest), "before") << rest;
}

}  // namespace

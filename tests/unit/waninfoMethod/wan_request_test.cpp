// Reading and checking of a WAN request.
#include "waninfoMethod/wan_request.h"

#include <clocale>

#include <gtest/gtest.h>

namespace {

TEST(WanRequest, ReadsEveryFieldFromItsKeyCutToItsSize) {
  for (const WanField& row : kWanFields) {
    if (row.field == &wanInfo::pppoeMtu) continue;
    const std::string value(row.size + 5, 'v');
    const json::JsonPtr config = json::new_object();
    json::add(config.get(), row.key, value);
    const wanInfo info = read_wan_info(config.get());
    for (const WanField& other : kWanFields) {
      const std::size_t length = &other == &row ? row.size - 1 : 0;
      EXPECT_EQ(info.*(other.field), value.substr(0, length)) << row.key << " in " << other.key;
    }
  }
}

TEST(WanRequest, TakesNumbersAndTexts) {
  const json::JsonPtr config = json::parse(R"({"wanMethod":5,"wanIPv6Method":"1","ipipService":true,"uPnPIGD":null})");
  const wanInfo info = read_wan_info(config.get());
  EXPECT_EQ(info.wanMethod, "5");
  EXPECT_EQ(info.wanIPv6Method, "1");
  EXPECT_EQ(info.ipipService, "true");
  EXPECT_EQ(info.uPnPIGD, "");
}

TEST(WanRequest, HasNoValueUnderTheKeysOfTheAnswer) {
  const json::JsonPtr config = json::parse(R"({"wanIpv6Method":1,"wanIpv4SubMask":"255.0.0.0"})");
  const wanInfo info = read_wan_info(config.get());
  EXPECT_EQ(info.wanIPv6Method, "");
  EXPECT_EQ(info.wanIpv4subMask, "");
}

TEST(WanRequest, AddsTheOverheadToThePppoeMtu) {
  const auto mtu = [](const char* text) { return read_wan_info(json::parse(text).get()).pppoeMtu; };
  EXPECT_EQ(mtu(R"({"pppoeMtu":1446})"), "1454");
  EXPECT_EQ(mtu(R"({"pppoeMtu":"1446"})"), "1454");
  EXPECT_EQ(mtu(R"({"pppoeMtu":"none"})"), "8");
  EXPECT_EQ(mtu(R"({"pppoeMtu":-8})"), "0");
  EXPECT_EQ(mtu(R"({"pppoeMtu":99999999999999})"), "2147483655");
  EXPECT_EQ(mtu(R"({"pppoeMtu":-99999999999999})"), "-2147483640");
  EXPECT_EQ(mtu("{}"), "");
}

constexpr const char* kGood = "user@example.jp";

TEST(PppoeCredentials, AreRefusedWhenBothHoldAForbiddenCharacter) {
  for (const char* bad : {"\"", "'", ",", "<", ">", "￥", "\\", "^", "`", "|", "in the | middle", "￥first", "last,"}) {
    EXPECT_EQ(checkPPPoeUsernameAndPassword(bad, bad), 1) << bad;
    EXPECT_EQ(checkPPPoeUsernameAndPassword(bad, ","), 1) << bad;
    EXPECT_EQ(checkPPPoeUsernameAndPassword(bad, kGood), 0) << bad;
    EXPECT_EQ(checkPPPoeUsernameAndPassword(kGood, bad), 0) << bad;
    EXPECT_EQ(checkPPPoeUsernameAndPassword(bad, ""), 0) << bad;
    EXPECT_EQ(checkPPPoeUsernameAndPassword("", bad), 0) << bad;
  }
}

TEST(PppoeCredentials, MayHoldEveryOtherCharacter) {
  const std::string forbidden = "\"',<>\\^`|";
  for (char character = 1; character > 0 && character < 127; ++character) {
    if (forbidden.find(character) != std::string::npos) continue;
    const std::string text(1, character);
    EXPECT_EQ(checkPPPoeUsernameAndPassword(text.c_str(), text.c_str()), 0) << static_cast<int>(character);
  }
}

// The yen sign is EF BF A5. Its bytes stand in other characters, too, and in texts that are no UTF-8 at all.
TEST(PppoeCredentials, TakeNoOtherCharacterForAYenSignInAnyLocale) {
  for (const char* locale : {"C", "C.UTF-8"}) {
    ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr) << locale;
    for (const char* text :
         {"\xEF\xBF\xA6", "\xEF\xBF", "\xBF\xA5", "\xE5\xBF\x85", "\xC2\xA5", "\xEF", "\xA5", "日本語"}) {
      EXPECT_EQ(checkPPPoeUsernameAndPassword(text, text), 0) << text;
    }
    EXPECT_EQ(checkPPPoeUsernameAndPassword("￥", "a￥b"), 1);
  }
  std::setlocale(LC_ALL, "C");
}

TEST(PppoeCredentials, AreNotRefusedWhenMissing) {
  EXPECT_EQ(checkPPPoeUsernameAndPassword(nullptr, ","), 0);
  EXPECT_EQ(checkPPPoeUsernameAndPassword(",", nullptr), 0);
}

TEST(BackupKey, JoinsThreeTexts) {
  wanInfo info;
  EXPECT_EQ(backup_key(info), "");
  info.wanMethod = "5";
  info.wanIPv6Method = "0";
  info.ipipService = "1";
  EXPECT_EQ(backup_key(info), "501");
  info.wanMethod = info.wanIPv6Method = info.ipipService = std::string(20, '9');
  EXPECT_EQ(backup_key(info), std::string(31, '9'));
}

TEST(Describe, TellsAllFieldsInOneLine) {
  wanInfo info;
  info.wanAutoSelectStatus = "1";
  info.wanMethod = "%s";
  const std::string text = describe(info);
  EXPECT_TRUE(text.starts_with("wanInfo.wanAutoSelectStatus = 1, wanInfo.wanMethod = %s, ")) << text;
  for (const WanField& row : kWanFields) EXPECT_NE(text.find(row.key), std::string::npos) << row.key;
}

}  // namespace

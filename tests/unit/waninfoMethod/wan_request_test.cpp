// Reading and checking of a WAN request.
#include "waninfoMethod/wan_request.h"

#include <clocale>

#include <gtest/gtest.h>

#include "answer/json_text.h"

namespace {

wanInfo read(const std::string& config) { return read_wan_info(json::Document(config.c_str()).root()).value(); }

std::string with(const char* key, const std::string& value) { return std::string("{\"") + key + "\": " + value + "}"; }

TEST(WanRequest, ReadsEveryFieldFromItsKeyCutToItsSize) {
  for (const WanField& row : kWanFields) {
    if (row.kind == WanKind::kMtu) continue;
    const std::string value(row.size + 5, '7');
    const wanInfo info = read(with(row.key, json::quoted(value)));
    for (const WanField& other : kWanFields) {
      const std::size_t length = &other == &row ? row.size - 1 : 0;
      EXPECT_EQ(info.*(other.field), value.substr(0, length)) << row.key << " in " << other.key;
    }
  }
}

TEST(WanRequest, CutsNoCharacter) {
  for (const WanField& row : kWanFields) {
    if (row.kind != WanKind::kLine && row.kind != WanKind::kSecret) continue;
    std::string text = "a";
    while (text.size() < row.size + 4) text += "日";
    const std::string value = read(with(row.key, json::quoted(text))).*(row.field);
    EXPECT_EQ(value, text.substr(0, 1 + (row.size - 2) / 3 * 3)) << row.key;
  }
}

TEST(WanRequest, TakesNumbersAndTexts) {
  const wanInfo info =
      read(R"({"wanMethod":5,"wanIPv6Method":"01","ipipService":true,"uPnPIGD":3.0,"dhcpcHostName":12})");
  EXPECT_EQ(info.wanMethod, "5");
  EXPECT_EQ(info.wanIPv6Method, "01");
  EXPECT_EQ(info.ipipService, "1");
  EXPECT_EQ(info.uPnPIGD, "3");
  EXPECT_EQ(info.dhcpcHostName, "12");
}

TEST(WanRequest, TakesAValueOfTheWrongKindForAMissingKey) {
  for (const WanField& row : kWanFields) {
    for (const char* value : {"null", "[]", "{}", "[1]", R"({"a": 1})"})
      EXPECT_EQ(read(with(row.key, value)).*(row.field), "") << row.key << value;
    const bool is_number = row.kind == WanKind::kCode || row.kind == WanKind::kMtu;
    if (!is_number) {
      EXPECT_EQ(read(with(row.key, "true")).*(row.field), "") << row.key;
      continue;
    }
    for (const char* value : {R"("")", R"("abc")", R"("1x")", R"(" 1")", R"("1.0")", "1.5"})
      EXPECT_EQ(read(with(row.key, value)).*(row.field), "") << row.key << value;
  }
}

TEST(WanRequest, HasNoValueUnderTheKeysOfTheAnswer) {
  const wanInfo info = read(R"({"wanIpv6Method":1,"wanIpv4SubMask":"255.0.0.0"})");
  EXPECT_EQ(info.wanIPv6Method, "");
  EXPECT_EQ(info.wanIpv4subMask, "");
}

TEST(WanRequest, AddsTheOverheadToThePppoeMtu) {
  const auto mtu = [](const char* text) { return read(text).pppoeMtu; };
  EXPECT_EQ(mtu(R"({"pppoeMtu":1446})"), "1454");
  EXPECT_EQ(mtu(R"({"pppoeMtu":"1446"})"), "1454");
  EXPECT_EQ(mtu(R"({"pppoeMtu":"none"})"), "");
  EXPECT_EQ(mtu(R"({"pppoeMtu":-8})"), "0");
  EXPECT_EQ(mtu(R"({"pppoeMtu":99999999999999})"), "2147483655");
  EXPECT_EQ(mtu(R"({"pppoeMtu":-99999999999999})"), "-2147483640");
  EXPECT_EQ(mtu("{}"), "");
}

TEST(WanRequest, IsNoneWhenATextCannotBeStored) {
  for (const WanField& row : kWanFields) {
    if (row.kind != WanKind::kLine && row.kind != WanKind::kSecret) continue;
    const auto is_taken = [&](const char* text) {
      return read_wan_info(json::Document(with(row.key, json::quoted(text)).c_str()).root()).has_value();
    };
    for (const char* text : {"\x01", "a\x1b", "\x1f"}) EXPECT_FALSE(is_taken(text)) << row.key;
    for (const char* text : {"a\nb", "a\r", "\tb"}) EXPECT_EQ(is_taken(text), row.kind == WanKind::kSecret) << row.key;
    EXPECT_TRUE(is_taken("日 本")) << row.key;
  }
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

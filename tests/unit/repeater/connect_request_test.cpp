#include "repeater/connect_request.h"

#include <gtest/gtest.h>

#include "answer/json.h"

namespace {

constexpr const char* kKeys[] = {"ssid",
                                 "bssid",
                                 "frequency",
                                 "encryptType",
                                 "encryptKey",
                                 "multiRuEnable",
                                 "multiLinkOperationEnable",
                                 "tryConnectOrSettingRepeater"};

json::JsonPtr whole_request() {
  return json::parse(
      R"({"ssid": "net", "bssid": "00:11:22:33:44:55", "frequency": 2, "encryptType": 1, "encryptKey": "secret",
                         "multiRuEnable": 1, "multiLinkOperationEnable": 3, "tryConnectOrSettingRepeater": 1})");
}

TEST(ParseRepeaterJsonData, ReadsEveryKey) {
  RepeaterConnectInfo info;
  ASSERT_EQ(ParseRepeaterJsonData(whole_request().get(), info), 0);
  EXPECT_EQ(info.ssid, "net");
  EXPECT_EQ(info.bssid, "00:11:22:33:44:55");
  EXPECT_EQ(info.frequency, 2);
  EXPECT_EQ(info.encrypt_type, kEncryptWpa2);
  EXPECT_EQ(info.encrypt_key, "secret");
  EXPECT_EQ(info.multi_ru_enable, 1);
  EXPECT_EQ(info.multi_link_operation_enable, 3);
  EXPECT_EQ(info.try_connect_or_setting_repeater, kApplySetting);
}

TEST(ParseRepeaterJsonData, NeedsEveryKey) {
  for (const char* key : kKeys) {
    const json::JsonPtr request = whole_request();
    json_object_object_del(request.get(), key);
    RepeaterConnectInfo info;
    EXPECT_EQ(ParseRepeaterJsonData(request.get(), info), 1) << key;
  }
}

TEST(ParseRepeaterJsonData, BoundsTexts) {
  const struct {
    const char* key;
    std::size_t longest;
  } rows[] = {{"ssid", 32}, {"bssid", 17}, {"encryptKey", 64}};
  for (const auto& row : rows) {
    for (const std::size_t length : {std::size_t{0}, row.longest, row.longest + 1, std::size_t{100000}}) {
      const json::JsonPtr request = whole_request();
      json::add(request.get(), row.key, std::string(length, 'x'));
      RepeaterConnectInfo info;
      EXPECT_EQ(ParseRepeaterJsonData(request.get(), info), length > row.longest ? 1 : 0) << row.key << length;
    }
  }
}

TEST(ParseRepeaterJsonData, CountsBytesAndNotCharacters) {
  const json::JsonPtr request = whole_request();
  json::add(request.get(), "ssid", "日本語日本語日本語日本");  // 11 characters, 33 bytes
  RepeaterConnectInfo info;
  EXPECT_EQ(ParseRepeaterJsonData(request.get(), info), 1);
}

TEST(ParseRepeaterJsonData, ConvertsAsTheJsonLibraryDoes) {
  const json::JsonPtr request = json::parse(
      R"({"ssid": 12, "bssid": null, "frequency": "3", "encryptType": "x", "encryptKey": true, "multiRuEnable": 1.9,
          "multiLinkOperationEnable": null, "tryConnectOrSettingRepeater": 99999999999})");
  RepeaterConnectInfo info;
  ASSERT_EQ(ParseRepeaterJsonData(request.get(), info), 0);
  EXPECT_EQ(info.ssid, "12");
  EXPECT_EQ(info.bssid, "");
  EXPECT_EQ(info.frequency, 3);
  EXPECT_EQ(info.encrypt_type, 0);
  EXPECT_EQ(info.encrypt_key, "true");
  EXPECT_EQ(info.multi_ru_enable, 1);
  EXPECT_EQ(info.multi_link_operation_enable, 0);
  EXPECT_EQ(info.try_connect_or_setting_repeater, 2147483647);
}

TEST(ParseRepeaterJsonData, RefusesWhatIsNoObject) {
  for (const char* text : {"[]", "1", "\"text\"", "true"}) {
    RepeaterConnectInfo info;
    EXPECT_EQ(ParseRepeaterJsonData(json::parse(text).get(), info), 1) << text;
  }
  RepeaterConnectInfo info;
  EXPECT_EQ(ParseRepeaterJsonData(nullptr, info), 1);
}

}  // namespace

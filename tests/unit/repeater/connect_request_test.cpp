#include "repeater/connect_request.h"

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "answer/json_text.h"

namespace {

constexpr const char* kKeys[] = {"ssid",
                                 "bssid",
                                 "frequency",
                                 "encryptType",
                                 "encryptKey",
                                 "multiRuEnable",
                                 "multiLinkOperationEnable",
                                 "tryConnectOrSettingRepeater"};

using Members = std::map<std::string, std::string>;  // values as JSON

const Members kWholeRequest{{"ssid", R"("net")"},
                            {"bssid", R"("00:11:22:33:44:55")"},
                            {"frequency", "2"},
                            {"encryptType", "1"},
                            {"encryptKey", R"("secret")"},
                            {"multiRuEnable", "1"},
                            {"multiLinkOperationEnable", "3"},
                            {"tryConnectOrSettingRepeater", "1"}};

int parse(const Members& members, RepeaterConnectInfo& info) {
  std::string text = "{\"another\": null";
  for (const auto& [key, value] : members) text += ", \"" + key + "\": " + value;
  return ParseRepeaterJsonData(json::Document((text + "}").c_str()).root(), info);
}

int parse_with(const char* key, const std::string& value) {
  Members members = kWholeRequest;
  members[key] = value;
  RepeaterConnectInfo info;
  return parse(members, info);
}

std::string text_of(const std::string& content) { return json::quoted(content); }

TEST(ParseRepeaterJsonData, ReadsEveryKey) {
  RepeaterConnectInfo info;
  ASSERT_EQ(parse(kWholeRequest, info), 0);
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
    Members members = kWholeRequest;
    members.erase(key);
    RepeaterConnectInfo info;
    EXPECT_EQ(parse(members, info), 1) << key;
  }
}

TEST(ParseRepeaterJsonData, TakesAValueOfTheWrongKindForAMissingKey) {
  for (const char* key : kKeys) {
    for (const char* value : {"null", "[]", "{}", "[1]", R"({"a": 1})"})
      EXPECT_EQ(parse_with(key, value), 1) << key << value;
  }
  for (const char* key :
       {"frequency", "encryptType", "multiRuEnable", "multiLinkOperationEnable", "tryConnectOrSettingRepeater"}) {
    for (const char* value : {R"("abc")", R"("")", R"("1x")", R"(" 1")", "1.5"})
      EXPECT_EQ(parse_with(key, value), 1) << key << value;
    for (const char* value : {"1", "1.0", "true", "false", R"("1")", R"("-1")", "99999999999"})
      EXPECT_EQ(parse_with(key, value), 0) << key << value;
  }
  for (const char* key : {"ssid", "bssid", "encryptKey"}) {
    EXPECT_EQ(parse_with(key, "true"), 1) << key;
    EXPECT_EQ(parse_with(key, "12"), 0) << key;
  }
}

TEST(ParseRepeaterJsonData, BoundsTexts) {
  const struct {
    const char* key;
    std::size_t longest;
  } rows[] = {{"ssid", 32}, {"bssid", 17}, {"encryptKey", 64}};
  for (const auto& row : rows) {
    for (const std::size_t length : {std::size_t{0}, row.longest, row.longest + 1, std::size_t{100000}}) {
      EXPECT_EQ(parse_with(row.key, text_of(std::string(length, 'x'))), length > row.longest ? 1 : 0)
          << row.key << length;
    }
  }
}

TEST(ParseRepeaterJsonData, CountsBytesAndNotCharacters) {
  EXPECT_EQ(parse_with("ssid", R"("日本語日本語日本語日本")"), 1);  // 11 characters, 33 bytes
  EXPECT_EQ(parse_with("ssid", R"("日本語日本語日本語日ab")"), 0);
}

TEST(ParseRepeaterJsonData, RefusesTextsThatCannotBeStored) {
  for (const char* key : {"ssid", "bssid", "encryptKey"}) {
    for (const char* text : {"\x01", "a\x1b[31m", "\x08"}) EXPECT_EQ(parse_with(key, text_of(text)), 1) << key;
  }
  // A name and a key may be of any text that UCI keeps; an address stands in one line.
  for (const char* text : {"a\tb", "a\nb", "a\r\nb", "\x7f"}) {
    EXPECT_EQ(parse_with("ssid", text_of(text)), 0) << text;
    EXPECT_EQ(parse_with("encryptKey", text_of(text)), 0) << text;
    EXPECT_EQ(parse_with("bssid", text_of(text)), 1) << text;
  }
}

TEST(ParseRepeaterJsonData, ReadsNumbersAndTextsOfEitherKind) {
  RepeaterConnectInfo info;
  Members members = kWholeRequest;
  members["ssid"] = "12";
  members["frequency"] = R"("3")";
  members["multiRuEnable"] = "true";
  members["multiLinkOperationEnable"] = "2.0";
  members["tryConnectOrSettingRepeater"] = "99999999999";
  ASSERT_EQ(parse(members, info), 0);
  EXPECT_EQ(info.ssid, "12");
  EXPECT_EQ(info.frequency, 3);
  EXPECT_EQ(info.multi_ru_enable, 1);
  EXPECT_EQ(info.multi_link_operation_enable, 2);
  EXPECT_EQ(info.try_connect_or_setting_repeater, 2147483647);
}

TEST(ParseRepeaterJsonData, RefusesWhatIsNoObject) {
  for (const char* text : {"[]", "1", "\"text\"", "true", "null", ""}) {
    RepeaterConnectInfo info;
    EXPECT_EQ(ParseRepeaterJsonData(json::Document(text).root(), info), 1) << text;
  }
}

}  // namespace

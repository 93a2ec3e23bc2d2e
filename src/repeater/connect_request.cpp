// Parsing of the repeater connect request.
#include "repeater/connect_request.h"

#include <optional>

#include "platform/log.h"
#include "platform/text.h"

namespace {

// The messages of the helpers are known by the name of the function that they work for.
constexpr const char* kParser = "ParseRepeaterJsonData";

// One key of the request and the field that it fills. The texts are what the log names the key by.
struct TextKey {
  const char* key;
  const char* name_when_too_long;
  std::size_t max_bytes;
  std::string RepeaterConnectInfo::*field;
  bool (*is_storable)(std::string_view text);
};
struct IntKey {
  const char* key;
  const char* name_when_missing;
  int RepeaterConnectInfo::*field;
};

constexpr TextKey kSsid{"ssid", "ssid", 32, &RepeaterConnectInfo::ssid, platform::is_storable};
constexpr TextKey kBssid{"bssid", "bssid", 17, &RepeaterConnectInfo::bssid, platform::is_one_line};
constexpr TextKey kEncryptKey{"encryptKey", "password", 64, &RepeaterConnectInfo::encrypt_key, platform::is_storable};
constexpr IntKey kFrequency{"frequency", "frequency", &RepeaterConnectInfo::frequency};
constexpr IntKey kEncryptType{"encryptType", "encryptType", &RepeaterConnectInfo::encrypt_type};
constexpr IntKey kMultiRu{"multiRuEnable", "multiRuEnable", &RepeaterConnectInfo::multi_ru_enable};
constexpr IntKey kMultiLink{"multiLinkOperationEnable", "multiLinkOperationEnable",
                            &RepeaterConnectInfo::multi_link_operation_enable};
// Told in the log under the name of the key before it: kept as it is.
constexpr IntKey kTryOrSetting{"tryConnectOrSettingRepeater", "multiLinkOperationEnable",
                               &RepeaterConnectInfo::try_connect_or_setting_repeater};

bool read_key(json::Object root, RepeaterConnectInfo& info, const TextKey& text) {
  const std::optional<std::string> value = root.text(text.key);
  if (!value) {
    log_error_as(kParser, "parse %s json error\n", text.key);
    return false;
  }
  if (value->size() > text.max_bytes) {
    log_error_as(kParser, "%s string is too long\n", text.name_when_too_long);
    return false;
  }
  if (!text.is_storable(*value)) {
    log_error_as(kParser, "%s holds control characters\n", text.key);
    return false;
  }
  info.*text.field = *value;
  return true;
}

bool read_key(json::Object root, RepeaterConnectInfo& info, const IntKey& number) {
  const std::optional<int> value = root.number(number.key);
  if (!value) {
    log_error_as(kParser, "parse %s json error\n", number.name_when_missing);
    return false;
  }
  info.*number.field = *value;
  return true;
}

}  // namespace

int ParseRepeaterJsonData(json::Object root, RepeaterConnectInfo& info) {
  const bool complete = read_key(root, info, kSsid) && read_key(root, info, kBssid) &&
                        read_key(root, info, kFrequency) && read_key(root, info, kEncryptType) &&
                        read_key(root, info, kEncryptKey) && read_key(root, info, kMultiRu) &&
                        read_key(root, info, kMultiLink) && read_key(root, info, kTryOrSetting);
  return complete ? 0 : 1;
}

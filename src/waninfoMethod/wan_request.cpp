// Reading and checking of a WAN request.
#include "waninfoMethod/wan_request.h"

#include <cstdint>
#include <string_view>

#include "platform/log.h"
#include "platform/text.h"

namespace {

// Messages of reading are known by the name of the handler that reads.
constexpr const char* kHandler = "handle_set_wanInfo_json";

constexpr std::int64_t kPppoeOverhead = 8;

// A number's digits; those of a text stay as they are.
std::optional<std::string> read_code(json::Object config, const char* key) {
  const std::optional<int> number = config.number(key);
  if (!number) return std::nullopt;
  std::optional<std::string> text = config.text(key);
  int same = 0;
  return text && platform::parse_decimal(*text, same) ? text : std::to_string(*number);
}

std::optional<std::string> read_mtu(json::Object config, const char* key) {
  const std::optional<int> mtu = config.number(key);
  return mtu ? std::optional(std::to_string(*mtu + kPppoeOverhead)) : std::nullopt;
}

std::optional<std::string> read_value(json::Object config, const WanField& row) {
  switch (row.kind) {
    case WanKind::kCode:
      return read_code(config, row.key);
    case WanKind::kMtu:
      return read_mtu(config, row.key);
    case WanKind::kLine:
    case WanKind::kSecret:
      break;
  }
  return config.text(row.key);
}

bool is_storable(const std::string& value, WanKind kind) {
  return kind == WanKind::kSecret ? platform::is_storable(value) : platform::is_one_line(value);
}

// A complete UTF-8 sequence can only be found where that character stands, so no locale has a say.
bool has_forbidden_character(std::string_view text) {
  constexpr std::string_view kYenSign = "\xEF\xBF\xA5";
  return text.find_first_of("\"',<>\\^`|") != std::string_view::npos || text.find(kYenSign) != std::string_view::npos;
}

}  // namespace

std::optional<wanInfo> read_wan_info(json::Object config) {
  wanInfo info;
  for (const WanField& row : kWanFields) {
    const std::optional<std::string> value = read_value(config, row);
    if (!value) {
      log_error_as(kHandler, "%s is not found.", row.key);
      continue;
    }
    std::string& field = info.*(row.field);
    field = platform::cut_utf8(*value, row.size - 1);
    if (!is_storable(field, row.kind)) {
      log_error_as(kHandler, "%s holds control characters.", row.key);
      return std::nullopt;
    }
  }
  return info;
}

int checkPPPoeUsernameAndPassword(const char* username, const char* password) {
  if (username == nullptr || password == nullptr) {
    log_error("Invalid parameter");
    return 0;
  }
  return has_forbidden_character(username) && has_forbidden_character(password) ? 1 : 0;
}

std::string backup_key(const wanInfo& info) {
  constexpr std::size_t kLongestKey = 31;
  return (info.wanMethod + info.wanIPv6Method + info.ipipService).substr(0, kLongestKey);
}

std::string describe(const wanInfo& info) {
  std::string text;
  for (const WanField& row : kWanFields) {
    if (!text.empty()) text += ", ";
    text.append("wanInfo.").append(row.key).append(" = ").append(info.*(row.field));
  }
  return text;
}

// Reading and checking of a WAN request.
#include "waninfoMethod/wan_request.h"

#include <cstdint>
#include <string_view>

#include "platform/log.h"

namespace {

constexpr std::int64_t kPppoeOverhead = 8;

std::string value_of(const WanField& row, json_object* config) {
  if (row.field == &wanInfo::pppoeMtu) {
    return std::to_string(json::int_member(config, row.key).value_or(0) + kPppoeOverhead);
  }
  return json::text_member(config, row.key).value_or("");
}

// A complete UTF-8 sequence can only be found where that character stands, so no locale has a say.
bool has_forbidden_character(std::string_view text) {
  constexpr std::string_view kYenSign = "\xEF\xBF\xA5";
  return text.find_first_of("\"',<>\\^`|") != std::string_view::npos || text.find(kYenSign) != std::string_view::npos;
}

}  // namespace

wanInfo read_wan_info(json_object* config) {
  wanInfo info;
  for (const WanField& row : kWanFields) {
    if (json::has_member(config, row.key)) {
      info.*(row.field) = value_of(row, config).substr(0, row.size - 1);
    } else {
      log_error("%s is not found.", row.key);
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

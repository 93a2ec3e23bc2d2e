// The request of POST /api/v1/router/wan-info: `wanConfig` as texts.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "answer/json_reading.h"

// Every value is a text, numbers too; a missing one is empty, which reads as 0. Bounds: kWanFields.
struct wanInfo {
  std::string wanAutoSelectStatus;
  std::string wanMethod;
  std::string wanIPv6Method;
  std::string vneAutoChangeStatus;
  std::string pppoeMtu;  // of the Ethernet link: 8 more than the client's number
  std::string captivePortalStatus;
  std::string natAccelerationEnable;
  std::string uPnPIGD;
  std::string pppoeUserName;
  std::string pppoePassword;
  std::string dhcpcHostName;
  std::string wanIpv4Address;
  std::string wanIpv4subMask;
  std::string wanIpv4Gateway;
  std::string wanIpv4Dns1;
  std::string wanIpv4Dns2;
  std::string aftrAddress;
  std::string ipipService;
  std::string ipipV4Address;
  std::string ipipBrAddress;
  std::string ipipInterfaceId;
  std::string ipipResettingUrl;
  std::string ipipUserId;
  std::string ipipPassword;
};

// What a field is in the request.
enum class WanKind {
  kCode,    // an integer
  kMtu,     // an integer, to which the overhead of the Ethernet link is added
  kLine,    // a text of one line
  kSecret,  // a text that may hold line ends
};

struct WanField {
  const char* key;
  std::string wanInfo::*field;
  std::size_t size;  // bytes, with the terminating NUL; a longer value is cut, but never inside a character
  WanKind kind;
};

// In the order in which they are read. The keys `wanIPv6Method` and `wanIpv4subMask` differ from those of the GET
// answer: kept as they are.
inline constexpr std::array<WanField, 24> kWanFields{{
    {"wanAutoSelectStatus", &wanInfo::wanAutoSelectStatus, 8, WanKind::kCode},
    {"wanMethod", &wanInfo::wanMethod, 8, WanKind::kCode},
    {"wanIPv6Method", &wanInfo::wanIPv6Method, 8, WanKind::kCode},
    {"vneAutoChangeStatus", &wanInfo::vneAutoChangeStatus, 8, WanKind::kCode},
    {"pppoeMtu", &wanInfo::pppoeMtu, 12, WanKind::kMtu},
    {"captivePortalStatus", &wanInfo::captivePortalStatus, 8, WanKind::kCode},
    {"natAccelerationEnable", &wanInfo::natAccelerationEnable, 8, WanKind::kCode},
    {"uPnPIGD", &wanInfo::uPnPIGD, 8, WanKind::kCode},
    {"pppoeUserName", &wanInfo::pppoeUserName, 65, WanKind::kLine},
    {"pppoePassword", &wanInfo::pppoePassword, 65, WanKind::kSecret},
    {"dhcpcHostName", &wanInfo::dhcpcHostName, 32, WanKind::kLine},
    {"wanIpv4Address", &wanInfo::wanIpv4Address, 16, WanKind::kLine},
    {"wanIpv4subMask", &wanInfo::wanIpv4subMask, 16, WanKind::kLine},
    {"wanIpv4Gateway", &wanInfo::wanIpv4Gateway, 16, WanKind::kLine},
    {"wanIpv4Dns1", &wanInfo::wanIpv4Dns1, 16, WanKind::kLine},
    {"wanIpv4Dns2", &wanInfo::wanIpv4Dns2, 16, WanKind::kLine},
    {"aftrAddress", &wanInfo::aftrAddress, 132, WanKind::kLine},
    {"ipipService", &wanInfo::ipipService, 8, WanKind::kCode},
    {"ipipV4Address", &wanInfo::ipipV4Address, 16, WanKind::kLine},
    {"ipipBrAddress", &wanInfo::ipipBrAddress, 64, WanKind::kLine},
    {"ipipInterfaceId", &wanInfo::ipipInterfaceId, 32, WanKind::kLine},
    {"ipipResettingUrl", &wanInfo::ipipResettingUrl, 64, WanKind::kLine},
    {"ipipUserId", &wanInfo::ipipUserId, 32, WanKind::kLine},
    {"ipipPassword", &wanInfo::ipipPassword, 32, WanKind::kSecret},
}};

// Reads all fields; a missing key is logged by its name. nullopt (logged) when a text cannot be stored as it is: it
// holds control characters, or line ends where there is but one line.
std::optional<wanInfo> read_wan_info(json::Object config);

// 1 when both texts hold a character that PPPoE credentials must not have (one of the two alone passes), else 0. The
// characters: " ' , < > \ ^ ` | and the full-width yen sign, in UTF-8. nullptr: "Invalid parameter" and 0.
int checkPPPoeUsernameAndPassword(const char* username, const char* password);

// What of a request decides whether a tunnel has to be set up anew: method, IPv6 method and service, e.g. "501".
std::string backup_key(const wanInfo& info);

// All fields as the debug log tells them.
std::string describe(const wanInfo& info);

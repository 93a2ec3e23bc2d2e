// The request of POST /api/v1/router/wan-info: `wanConfig` as texts.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "answer/json.h"

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

struct WanField {
  const char* key;
  std::string wanInfo::*field;
  std::size_t size;  // bytes, with the terminating NUL; a longer value is cut
};

// In the order in which they are read. The keys `wanIPv6Method` and `wanIpv4subMask` differ from those of the GET
// answer: clients of this route know them so.
inline constexpr std::array<WanField, 24> kWanFields{{
    {"wanAutoSelectStatus", &wanInfo::wanAutoSelectStatus, 8},
    {"wanMethod", &wanInfo::wanMethod, 8},
    {"wanIPv6Method", &wanInfo::wanIPv6Method, 8},
    {"vneAutoChangeStatus", &wanInfo::vneAutoChangeStatus, 8},
    {"pppoeMtu", &wanInfo::pppoeMtu, 12},
    {"captivePortalStatus", &wanInfo::captivePortalStatus, 8},
    {"natAccelerationEnable", &wanInfo::natAccelerationEnable, 8},
    {"uPnPIGD", &wanInfo::uPnPIGD, 8},
    {"pppoeUserName", &wanInfo::pppoeUserName, 65},
    {"pppoePassword", &wanInfo::pppoePassword, 65},
    {"dhcpcHostName", &wanInfo::dhcpcHostName, 32},
    {"wanIpv4Address", &wanInfo::wanIpv4Address, 16},
    {"wanIpv4subMask", &wanInfo::wanIpv4subMask, 16},
    {"wanIpv4Gateway", &wanInfo::wanIpv4Gateway, 16},
    {"wanIpv4Dns1", &wanInfo::wanIpv4Dns1, 16},
    {"wanIpv4Dns2", &wanInfo::wanIpv4Dns2, 16},
    {"aftrAddress", &wanInfo::aftrAddress, 132},
    {"ipipService", &wanInfo::ipipService, 8},
    {"ipipV4Address", &wanInfo::ipipV4Address, 16},
    {"ipipBrAddress", &wanInfo::ipipBrAddress, 64},
    {"ipipInterfaceId", &wanInfo::ipipInterfaceId, 32},
    {"ipipResettingUrl", &wanInfo::ipipResettingUrl, 64},
    {"ipipUserId", &wanInfo::ipipUserId, 32},
    {"ipipPassword", &wanInfo::ipipPassword, 32},
}};

// Reads all fields. `config` is a loan; a missing key is logged by its name.
wanInfo read_wan_info(json_object* config);

// 1 when both texts hold a character that PPPoE credentials must not have (one of the two alone passes), else 0. The
// characters: " ' , < > \ ^ ` | and the full-width yen sign, in UTF-8. nullptr: "Invalid parameter" and 0.
int checkPPPoeUsernameAndPassword(const char* username, const char* password);

// What of a request decides whether a tunnel has to be set up anew: method, IPv6 method and service, e.g. "501".
std::string backup_key(const wanInfo& info);

// All fields as the debug log tells them.
std::string describe(const wanInfo& info);

// The WAN's vocabulary: connection methods, their stored names and codes, and what the provisioning tools report.
#pragma once

#include <string>
#include <string_view>

// The integers of `wanMethod`.
inline constexpr int kWanDhcp = 0;
inline constexpr int kWanStatic = 1;
inline constexpr int kWanPppoe = 2;
inline constexpr int kWanMapE = 3;
inline constexpr int kWanDsLite = 4;
inline constexpr int kWanIpip6 = 5;
inline constexpr int kWanStdprov = 6;
inline constexpr int kWanAp = 7;
inline constexpr int kWanRepeater = 8;

// How long a network.wan.mode text may be, with the terminating NUL.
inline constexpr std::size_t kWanModeSize = 16;

// The code of a stored mode, by prefix; 0 for any other text, which is logged ("Invalid mode, mode = %s.").
int change_wan_mode_string_to_int(const std::string& mode);

// 'A' for the plain methods (0 to 2), 'B' for tunnels and AP mode (3 to 7), 'N' for any other code.
char get_wan_mode_type(int code);

// A method whose IPv4 runs through a tunnel over IPv6: MAP-E, DS-Lite, IPIP6 and the provider-provisioned one.
bool is_tunnel_mode(std::string_view mode);

// `wanMethod` with its display text, as the set-up screens show the unit.
struct WanMethod {
  int code = 0;
  std::string_view display;  // empty where the provider's name stands in its place
  bool known = true;         // false: no row fits, the code is 0
};
// `mode`: network.wan.mode; `button_mode`: the working mode of the unit's switch.
WanMethod find_wan_method(std::string_view mode, std::string_view button_mode);

// `wanHb46ppMethod` of the mode that the tunnel-status tool reports: 3 IPIP6, 2 DS-Lite, 1 MAP-E, else 0.
int getHb46ppMethod(std::string_view tunnel_mode);

// `ipipService` of network.wan.v6service, by prefix: 1 v6plus, 2 transix, 3 v6connect, else 0 ("manual", too).
int getIpipServiceCode(std::string_view service);
// The text to store for a service code; "manual" for any other.
const char* v6ServerMode(int service);

// `previousInternetLineAutoResult` of the last line detection's number; 0 for a number that means nothing to a screen.
int getPreviousInternetLineResult(int detection);

// The display name of a service that the tunnel-status tool names, into `out` (at most size - 1 bytes). A provisioned
// service without a name in parentheses leaves `out` as it is.
void getWanMethodStr(const std::string& service, std::string& out, std::size_t size);

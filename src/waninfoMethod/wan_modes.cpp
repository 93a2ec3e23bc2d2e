// Tables of the WAN's vocabulary. All of them are searched by prefix, first row first.
#include "waninfoMethod/wan_modes.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/log.h"
#include "platform/text.h"

namespace {

struct NamedCode {
  std::string_view name;
  int code;
};

constexpr std::array<NamedCode, 9> kStoredModes{{
    {"wb_mode", kWanRepeater},
    {"DHCP", kWanDhcp},
    {"STATIC", kWanStatic},
    {"PPPOE", kWanPppoe},
    {"MAP-E", kWanMapE},
    {"DS-Lite", kWanDsLite},
    {"IPIP6", kWanIpip6},
    {"STDPROV", kWanStdprov},
    {"AP", kWanAp},
}};

constexpr std::array<std::string_view, 4> kTunnelModes{"MAP-E", "DS-Lite", "IPIP6", "STDPROV"};

struct MethodRow {
  std::string_view mode;
  int code;
  std::string_view display;
};

constexpr std::array<MethodRow, 7> kMethods{{
    {"DHCP", kWanDhcp, "IPアドレス自動取得"},
    {"STATIC", kWanStatic, "IPアドレス固定設定"},
    {"PPPOE", kWanPppoe, "PPPoE認証"},
    {"MAP-E", kWanMapE, ""},
    {"DS-Lite", kWanDsLite, ""},
    {"IPIP6", kWanIpip6, ""},
    {"STDPROV", kWanStdprov, ""},
}};

constexpr std::array<NamedCode, 3> kHb46ppModes{{{"IPIP6", 3}, {"DS-Lite", 2}, {"MAP-E", 1}}};
constexpr std::array<NamedCode, 3> kIpipServices{{{"v6plus", 1}, {"transix", 2}, {"v6connect", 3}}};

struct ProviderName {
  std::string_view service;
  std::string_view display;
};

constexpr std::array<ProviderName, 10> kProviders{{
    {"JPNE v6Plus", "v6プラス"},
    {"Biglobe IPv6 Option", "IPv6オプション"},
    {"OCN Virtual Connect", "OCNバーチャルコネクト"},
    {"Freebit IPv6 Premium", "その他MAP-Eサービス"},
    {"Unknown MAP-E", "その他MAP-Eサービス"},
    {"IMF transix", "transix"},
    {"Arteria Networks Xpass", "クロスパス"},
    {"Unknown DS-Lite", "その他DS-Liteサービス"},
    {"IPoE IPv6 Service", "IPv6 IPoEサービス"},
    {"Asahi Net v6Connect", "v6コネクト"},
}};
constexpr std::string_view kProvisioned = "Standard Provisioning Method";

struct DetectionResult {
  int detection;
  int result;
};

constexpr std::array<DetectionResult, 19> kDetectionResults{{
    {2, 1},   {18, 1},  {34, 1}, {130, 1}, {146, 1}, {162, 1}, {4, 2},  {20, 2},  {36, 2}, {132, 2},
    {148, 2}, {164, 2}, {65, 3}, {66, 3},  {67, 4},  {68, 4},  {71, 5}, {168, 5}, {69, 6},
}};

template <typename Table>
int code_of(const Table& table, std::string_view text, int otherwise) {
  const auto row = std::find_if(table.begin(), table.end(), [&](const auto& r) { return text.starts_with(r.name); });
  return row == table.end() ? otherwise : row->code;
}

// What stands between the first parenthesis and the next closing one, at most 99 bytes; empty when nothing does.
std::string_view provider_in_parentheses(std::string_view service) {
  constexpr std::size_t kLongestName = 99;
  const std::size_t open = service.find('(');
  if (open == std::string_view::npos) return {};
  const std::string_view name = service.substr(open + 1);
  return platform::cut_utf8(name.substr(0, name.find(')')), kLongestName);
}

}  // namespace

int change_wan_mode_string_to_int(const std::string& mode) {
  const int code = code_of(kStoredModes, mode, -1);
  if (code >= 0) return code;
  log_error("Invalid mode, mode = %s.", mode.c_str());
  return 0;
}

char get_wan_mode_type(int code) {
  if (code < kWanDhcp || code > kWanAp) return 'N';
  return code <= kWanPppoe ? 'A' : 'B';
}

bool is_tunnel_mode(std::string_view mode) {
  return std::any_of(kTunnelModes.begin(), kTunnelModes.end(), [&](auto name) { return mode.starts_with(name); });
}

WanMethod find_wan_method(std::string_view mode, std::string_view button_mode) {
  if (button_mode.starts_with("wb_mode")) return {kWanRepeater, "リピーターモード"};
  for (const MethodRow& row : kMethods) {
    if (mode.starts_with(row.mode)) return {row.code, row.display};
  }
  const bool serves_lan = button_mode.starts_with("router_mode") || button_mode.starts_with("ap_mode");
  if (mode.starts_with("AP") && serves_lan) return {kWanAp, "APモード"};
  return {0, "", false};
}

int getHb46ppMethod(std::string_view tunnel_mode) { return code_of(kHb46ppModes, tunnel_mode, 0); }

int getIpipServiceCode(std::string_view service) { return code_of(kIpipServices, service, 0); }

const char* v6ServerMode(int service) {
  const auto row =
      std::find_if(kIpipServices.begin(), kIpipServices.end(), [&](const auto& r) { return r.code == service; });
  return row == kIpipServices.end() ? "manual" : row->name.data();
}

int getPreviousInternetLineResult(int detection) {
  const auto row = std::find_if(kDetectionResults.begin(), kDetectionResults.end(),
                                [&](const auto& r) { return r.detection == detection; });
  return row == kDetectionResults.end() ? 0 : row->result;
}

void getWanMethodStr(const std::string& service, std::string& out, std::size_t size) {
  if (service.starts_with(kProvisioned)) {
    const std::string_view provider = provider_in_parentheses(service);
    if (provider.empty()) {
      log_debug("sscanf error.");
    } else {
      out = platform::cut_utf8(provider, size - 1);
    }
    return;
  }
  const auto row = std::find_if(kProviders.begin(), kProviders.end(),
                                [&](const ProviderName& r) { return service.starts_with(r.service); });
  out = platform::cut_utf8(row == kProviders.end() ? std::string_view(service) : row->display, size - 1);
}

// GET /api/v1/router/wan-info.
#include <array>
#include <cstdlib>
#include <string>
#include <utility>

#include "answer/answer.h"
#include "handlers.h"
#include "platform/file.h"
#include "platform/log.h"
#include "platform/text.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/mesh.h"
#include "unit/operating_mode.h"
#include "waninfoMethod/tunnel_status.h"
#include "waninfoMethod/wan_addresses.h"
#include "waninfoMethod/wan_link.h"
#include "waninfoMethod/wan_modes.h"

namespace {

// The messages of this file are known by the name of their route's handler.
constexpr const char* kHandler = "handle_get_wanInfo_json";

constexpr const char* kAddressScript = "/etc/getIpAddr.sh";
constexpr const char* kAddressResult = "/tmp/ipAddrResult";
constexpr std::size_t kFlagSize = 8;
constexpr std::size_t kMacSize = 20;
constexpr std::size_t kDisplaySize = 256;
constexpr int kDefaultPppoeMtu = 1454;
constexpr int kPppoeOverhead = 8;

// What is gathered before the document is built.
struct WanState {
  std::string mode;
  std::string button_mode;
  std::string auto_flag;
  std::string wan_mac;
  std::string lan_mac;
  int link = 0;
  int hb46pp_method = 0;
  std::string method_display;
  std::string ce_address;
  std::string available_ports = "none";  // lower case, unlike the addresses: kept as it is
  WanAddresses addresses;

  // A router that holds the WAN's addresses itself.
  [[nodiscard]] bool has_wan_addresses() const {
    return button_mode.starts_with("router_mode") && !mode.starts_with("AP");
  }
};

std::string read_text(const char* package, const char* section, const char* option, std::size_t size) {
  return uci::Section(package, section).read_or(option, size, "");
}

std::string read_wan(const char* option, std::size_t size) { return read_text("network", "wan", option, size); }

int read_number(const char* package, const char* section, const char* option) {
  return std::atoi(read_text(package, section, option, kFlagSize).c_str());
}

// What the packages must hold for the document to mean anything; a satellite has no WAN of its own.
bool has_needed_sections(bool is_agent) {
  if (!uci::Section("system", "@system[0]").exists()) {
    log_error_as(kHandler, "Invalid system.system section.");
    return false;
  }
  if (!uci::Section("network", "wan").exists() && !is_agent) {
    log_error_as(kHandler, "Invalid network.wan section.");
    return false;
  }
  return true;
}

void read_link(WanState& state) {
  if (get_macAddr(kWanInterface, state.wan_mac) != 0) log_error_as(kHandler, "get wanMac fail!");
  if (get_macAddr("br-lan", state.lan_mac) != 0) log_error_as(kHandler, "get lanMac fail!");
  for (std::string* mac : {&state.wan_mac, &state.lan_mac}) mac->resize(platform::cut_utf8(*mac, kMacSize - 1).size());
  get_wan_link_status(state.link);
}

// Takes over what the tunnel has; what it has not keeps its default.
void read_tunnel(WanState& state) {
  Ip4ov6jp_InfoCmd();
  const Ip4orip6Info& info = g_ip4orip6Info;
  state.hb46pp_method = getHb46ppMethod(info.mode);
  getWanMethodStr(info.vne_service, state.method_display, kDisplaySize);
  state.ce_address = info.CE;
  if (!info.ipv4.empty()) state.addresses.ipv4_address = info.ipv4;
  if (!info.port.empty()) state.available_ports = info.port;
  if (!info.wan_global_addr.empty()) state.addresses.ipv6_global = info.wan_global_addr + "/64";
  log_debug_as(kHandler, "wanHb46ppMethod = %d", state.hb46pp_method);
  log_debug_as(kHandler, "wanMethodStr = %s", state.method_display.c_str());
  log_debug_as(kHandler, "wanIpv6CeAddress = %s", state.ce_address.c_str());
  log_debug_as(kHandler, "wanIpv4Address = %s", state.addresses.ipv4_address.c_str());
  log_debug_as(kHandler, "wanIpv4AvailablePorts = %s", state.available_ports.c_str());
  log_debug_as(kHandler, "wanIpv6GlobalAddress = %s", state.addresses.ipv6_global.c_str());
}

int read_method(WanState& state) {
  const WanMethod method = find_wan_method(state.mode, state.button_mode);
  if (!method.known) log_error_as(kHandler, "Invalid mode, modeValue = %s.", state.mode.c_str());
  if (!method.display.empty()) state.method_display = method.display;
  return method.code;
}

int read_ipv6_method() {
  const int prefix_delegation = std::atoi(read_wan("dhcpv6pd", kFlagSize).c_str());
  if (std::atoi(read_wan("slaac", kFlagSize).c_str()) == 1) return 1;
  return prefix_delegation == 1 ? 2 : 0;
}

void add_unless_empty(json::ObjectText& config, const char* key, const std::string& value) {
  if (!value.empty()) config.add(key, value);
}

void add_connection(json::ObjectText& config, WanState& state) {
  const int method = read_method(state);
  const std::string password = read_wan("password", 65);
  const std::string user_name = read_wan("username", 65);
  const std::string mtu = read_wan("mtu", kFlagSize);
  config.add("lanMacAddress", state.lan_mac);
  config.add("wanMacAddress", state.wan_mac);
  config.add("wanLinkStatus", state.link);
  config.add("wanAutoSelectStatus", std::atoi(state.auto_flag.c_str()));
  config.add("wanMethod", method);
  config.add("wanHb46ppMethod", state.hb46pp_method);
  config.add("wanMethodStr", state.method_display);
  if (state.has_wan_addresses()) config.add("wanIpv6Method", read_ipv6_method());
  config.add("vneAutoChangeStatus", 0);
  add_unless_empty(config, "pppoeUserName", user_name);
  add_unless_empty(config, "pppoePassword", password);
  config.add("pppoeMtu", mtu.empty() ? kDefaultPppoeMtu : std::atoi(mtu.c_str()) - kPppoeOverhead);
}

// False when the script ran and left no result: the document then ends here.
bool read_live_addresses(WanAddresses& addresses) {
  if (!platform::file_exists(kAddressScript)) {
    log_error_as(kHandler, "The getIpAddr.sh file does not exist.");
    return true;
  }
  os_system(kAddressScript);
  const std::optional<std::string> content = platform::read_file(kAddressResult);
  if (!content) {
    log_error_as(kHandler, "open /tmp/ipAddrResult fail.");
    return false;
  }
  read_address_lines(*content, addresses);
  return true;
}

// The tunnel carries IPv4, so there is no native one.
void forget_native_ipv4(WanAddresses& addresses) {
  addresses.ipv4_mask = addresses.ipv4_gateway = addresses.ipv4_dns1 = addresses.ipv4_dns2 = kNoAddress;
}

bool add_addresses(json::ObjectText& config, WanState& state) {
  WanAddresses& addresses = state.addresses;
  if (!read_live_addresses(addresses)) return false;
  if (is_tunnel_mode(state.mode)) forget_native_ipv4(addresses);
  config.add("wanIpv4Address", addresses.ipv4_address);
  config.add("wanIpv4SubMask", addresses.ipv4_mask);
  config.add("wanIpv4Gateway", addresses.ipv4_gateway);
  config.add("wanIpv4Dns1", addresses.ipv4_dns1);
  config.add("wanIpv4Dns2", addresses.ipv4_dns2);
  config.add("wanIpv6GlobalAddress", addresses.ipv6_global);
  config.add("wanIpv6LocalAddress", addresses.ipv6_local);
  config.add("wanIpv6CeAddress", state.ce_address.empty() ? kNoAddress : state.ce_address);
  config.add("wanIpv6Gateway", addresses.ipv6_gateway);
  config.add("wanIpv6Dns1", addresses.ipv6_dns1);
  config.add("wanIpv6Dns2", addresses.ipv6_dns2);
  config.add("wanIpv4AvailablePorts", state.available_ports);
  return true;
}

struct IpipOption {
  const char* key;
  const char* option;
  std::size_t size;
};

constexpr std::array<IpipOption, 6> kIpipOptions{{
    {"ipipV4Address", "ip4addr", 16},
    {"ipipBrAddress", "braddr", 40},
    {"ipipInterfaceId", "interfaceid", 32},
    {"ipipResettingUrl", "url", 64},
    {"ipipUserId", "ipipusername", 64},
    {"ipipPassword", "ipippasswd", 64},
}};

void add_tunnel_settings(json::ObjectText& config, const std::string& mode) {
  if (mode.starts_with("DS-Lite")) config.add("aftrAddress", read_wan("aftr", 132));
  if (!mode.starts_with("IPIP6")) return;
  config.add("ipipService", getIpipServiceCode(read_wan("v6service", 16)));
  for (const IpipOption& row : kIpipOptions) config.add(row.key, read_wan(row.option, row.size));
}

int read_acceleration() {
  const std::string acceleration = read_text("ecm", "global", "acceleration", kFlagSize);
  if (!acceleration.empty()) return std::atoi(acceleration.c_str());
  log_error_as(kHandler, "Not found ecm.global.acceleration ,use default 1.");
  return 1;
}

void add_switches(json::ObjectText& config, const std::string& mode) {
  constexpr std::size_t kHostNameSize = 32;
  const std::string host_name = read_wan("hostname", kHostNameSize);
  config.add("dhcpcHostName",
             host_name.empty() ? read_text("network", "backwan", "hostname", kHostNameSize) : host_name);
  config.add("captivePortalStatus", read_number("system", "easysetup", "http_redirect_enable"));
  add_tunnel_settings(config, mode);
  config.add("natAccelerationEnable", read_acceleration());
  config.add("uPnPIGD", read_text("upnpd", "config", "enabled", kFlagSize));  // a text: kept as it is
  const std::string detection = read_wan("qvilas_res", 16);
  config.add("previousInternetLineAutoResult", getPreviousInternetLineResult(std::atoi(detection.c_str())));
}

WanState gather_state() {
  WanState state;
  unit::operating_mode();  // only told in the log, where it is missing
  state.button_mode = read_text("system", "@system[0]", "button_mode", 12);
  state.mode = read_wan("mode", kWanModeSize);
  state.auto_flag = read_wan("autoflag", kFlagSize);
  read_link(state);
  if (is_tunnel_mode(state.mode)) read_tunnel(state);
  return state;
}

}  // namespace

int handle_get_wanInfo_json(FCGX_Request* request) {
  if (!has_needed_sections(unit::is_agent_by_role_prefix())) return answer(request, answers::kNothing);
  WanState state = gather_state();
  json::ObjectText config;
  add_connection(config, state);
  if (!state.has_wan_addresses() || add_addresses(config, state)) add_switches(config, state.mode);
  json::ObjectText document = json::success_text();
  document.add("wanConfig", std::move(config));
  return answer(request, std::move(document));
}

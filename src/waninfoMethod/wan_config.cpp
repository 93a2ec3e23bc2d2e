// The WAN's configuration: what each method writes, and what goes with the method that was.
#include "waninfoMethod/wan_config.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

#include "platform/log.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/operating_mode.h"
#include "waninfoMethod/lan_bridge.h"
#include "waninfoMethod/wan_link.h"
#include "waninfoMethod/wan_modes.h"

namespace {

// The messages of the helpers are known by the name of the function that they work for.
constexpr const char* kWriter = "set_wanInfoConfig";

constexpr std::size_t kAddressSize = 16;
constexpr std::size_t kMostNameServers = 8;

// A write that fails stops nothing: it is told in the log.
uci::Section wan_section() { return {"network", "wan"}; }

std::vector<std::string> read_name_servers() {
  return wan_section().read_list("dns", kAddressSize, kMostNameServers).value_or(std::vector<std::string>{});
}

void delete_name_server(const std::string& server) { wan_section().remove_from_list("dns", server); }

// --- Deletions.

struct OldMode {
  std::string_view name;
  std::array<const char*, 7> options;  // ends at the first nullptr
};

constexpr std::array<OldMode, 5> kOldModes{{
    {"STATIC", {"ipaddr", "netmask", "gateway"}},
    {"PPPOE", {"mtu", "keepalive"}},
    {"DS-Lite", {"aftr"}},
    {"IPIP6", {"v6service", "ip4addr", "braddr", "interfaceid", "url", "ipipusername", "ipippasswd"}},
    {"MAP-E", {"qvmapeboottime", "qvmapebootflag"}},
}};

void delete_static_name_servers() {
  for (const std::string& server : read_name_servers()) {
    if (server.empty()) continue;
    trace_stderr("dns = %s\n", server.c_str());
    delete_name_server(server);
  }
}

// --- Single fields.

struct RangedField {
  std::string wanInfo::*field;
  int largest;
  const char* package;
  const char* section;
  const char* option;
  const char* name;  // as the log calls it
};

// The text itself is stored, an empty one too: it reads as 0.
void write_ranged(const wanInfo& info, const RangedField& row) {
  const std::string& text = info.*(row.field);
  const int value = std::atoi(text.c_str());
  if (value < 0 || value > row.largest) {
    log_error_as(kWriter, "Invalid %s parameter, waninfo->%s = %d", row.name, row.name, value);
    return;
  }
  uci::Section(row.package, row.section).set(row.option, text);
}

constexpr RangedField kAutoSelect{&wanInfo::wanAutoSelectStatus, 2, "network", "wan", "autoflag",
                                  "wanAutoSelectStatus"};
constexpr RangedField kVneAutoChange{&wanInfo::vneAutoChangeStatus, 1, "network", "wan", "v6vne",
                                     "vneAutoChangeStatus"};
constexpr RangedField kAcceleration{&wanInfo::natAccelerationEnable, 1, "ecm", "global", "acceleration",
                                    "natAccelerationEnable"};
constexpr RangedField kUpnp{&wanInfo::uPnPIGD, 3, "upnpd", "config", "enabled", "uPnPIGD"};
constexpr RangedField kCaptivePortal{&wanInfo::captivePortalStatus, 1, "system", "easysetup", "http_redirect_enable",
                                     "captivePortalStatus"};

void write_ipv6_method(int method) {
  const uci::Section wan = wan_section();
  switch (method) {
    case 0:
      wan.set("slaac", "0");
      wan.set("dhcpv6pd", "0");
      break;
    case 1:
      wan.set("slaac", "1");
      uci::Section("network", "backwan").set("slaac", "1");
      wan.set("dhcpv6pd", "0");
      break;
    case 2:
      wan.set("dhcpv6pd", "1");
      uci::Section("network", "backwan").set("dhcpv6pd", "1");
      wan.set("slaac", "0");
      break;
    default:
      log_error_as(kWriter, "Invalid wanIPv6Method parameter, waninfo->wanIPv6Method = %d", method);
  }
}

// --- Methods.

struct LastSettings {
  std::string mode;
  std::string address;
  std::string mask;
  std::string gateway;
};

LastSettings read_last_settings() {
  const uci::Section wan = wan_section();
  LastSettings last{wan.read_or("mode", kWanModeSize, ""), wan.read_or("ipaddr", kAddressSize, ""),
                    wan.read_or("netmask", kAddressSize, ""), wan.read_or("gateway", kAddressSize, "")};
  log_debug_as(kWriter, "lastMode[%s],lastipaddr[%s],lastnetmask[%s],lastgateway[%s]", last.mode.c_str(),
               last.address.c_str(), last.mask.c_str(), last.gateway.c_str());
  return last;
}

struct FieldOption {
  const char* option;
  std::string wanInfo::*field;
};

// What a method writes: its name, its protocol, and the request's fields that are not empty.
struct Method {
  const char* mode;
  const char* proto;
  std::array<FieldOption, 6> fields;  // ends at the first row without an option
};

constexpr std::array<Method, 7> kMethods{{
    {"DHCP", "dhcp", {{{"hostname", &wanInfo::dhcpcHostName}}}},
    {"STATIC",
     "static",
     {{{"ipaddr", &wanInfo::wanIpv4Address},
       {"netmask", &wanInfo::wanIpv4subMask},
       {"gateway", &wanInfo::wanIpv4Gateway}}}},
    {"PPPOE",
     "pppoe",
     {{{"username", &wanInfo::pppoeUserName}, {"password", &wanInfo::pppoePassword}, {"mtu", &wanInfo::pppoeMtu}}}},
    {"MAP-E", "none", {}},
    {"DS-Lite", "none", {}},
    {"IPIP6",
     "none",
     {{{"ip4addr", &wanInfo::ipipV4Address},
       {"braddr", &wanInfo::ipipBrAddress},
       {"interfaceid", &wanInfo::ipipInterfaceId},
       {"url", &wanInfo::ipipResettingUrl},
       {"ipipusername", &wanInfo::ipipUserId},
       {"ipippasswd", &wanInfo::ipipPassword}}}},
    {"STDPROV", "none", {}},
}};

void flush_when_address_changes(const wanInfo& info, const LastSettings& last) {
  if (info.wanIpv4Address == last.address && info.wanIpv4subMask == last.mask && info.wanIpv4Gateway == last.gateway) {
    return;
  }
  log_debug_as(kWriter, "wan need flush!!!");
  flush_wan();
}

void replace_name_servers(const wanInfo& info) {
  const std::vector<std::string> servers = read_name_servers();
  log_debug_as(kWriter, "dnsListNum = %d", static_cast<int>(servers.size()));
  std::for_each(servers.begin(), servers.end(), delete_name_server);
  for (const std::string& server : {info.wanIpv4Dns1, info.wanIpv4Dns2}) {
    if (!server.empty()) wan_section().add_to_list("dns", server);
  }
}

void write_ipip6_service(const wanInfo& info) {
  const char* service = v6ServerMode(std::atoi(info.ipipService.c_str()));
  log_debug_as(kWriter, "v6ServerMode = %s", service);
  wan_section().set("v6service", service);
}

void write_access_point() {
  wan_section().set("proto", "none");
  wan_section().set("mode", "AP");
  turn_lan_into_client();
  unit::set_operating_mode(unit::kAccessPointMode);
}

void write_method(const wanInfo& info, const LastSettings& last) {
  const int code = std::atoi(info.wanMethod.c_str());
  if (code == kWanAp) return write_access_point();
  if (code < kWanDhcp || code > kWanAp) {
    log_error_as(kWriter, "Invalid wanMethod parameter, waninfo->wanMethod = %d", code);
    return;
  }
  if (code == kWanStatic) flush_when_address_changes(info, last);
  const Method& method = kMethods[static_cast<std::size_t>(code)];
  const uci::Section wan = wan_section();
  wan.set("mode", method.mode);
  wan.set("proto", method.proto);
  if (code == kWanDsLite) wan.set("aftr", info.aftrAddress);  // an empty one, too: the provider's own is then found
  if (code == kWanIpip6) write_ipip6_service(info);
  for (const FieldOption& row : method.fields) {
    if (row.option != nullptr && !(info.*(row.field)).empty()) wan.set(row.option, info.*(row.field));
  }
  if (code == kWanStatic) replace_name_servers(info);
  if (code == kWanPppoe) {
    wan.set("keepalive", "5 60");
    unit::set_operating_mode(unit::kRouterMode);
  }
}

void report_missing_section(const char* package, const char* section) {
  if (!uci::Section(package, section).exists()) log_error_as(kWriter, "create wan failed.");
}

}  // namespace

void flush_wan() {
  const std::string command = std::string("ip addr flush dev ") + kWanInterface;
  if (os_system(command) != 1) log_error("Failed to flush WAN interface! cmd: [%s]", command.c_str());
}

unsigned int delLastModePara(const char* mode, std::size_t length) {
  if (mode == nullptr || length == 0) {
    log_error("Invalid parameter.");
    return 1;
  }
  const std::string_view text(mode, length);
  const auto old =
      std::find_if(kOldModes.begin(), kOldModes.end(), [&](const OldMode& row) { return row.name.starts_with(text); });
  if (old == kOldModes.end()) return 0;
  for (const char* option : old->options) {
    if (option != nullptr) wan_section().remove(option);
  }
  if (old->name == "STATIC") delete_static_name_servers();
  if (old->name == "MAP-E") uci::Section("network", "wan_mape").remove();
  return 0;
}

unsigned int set_wanInfoConfig(const wanInfo* info) {
  if (info == nullptr) return 1;
  uci::Section("network", "backwan").set("change", "1");
  const LastSettings last = read_last_settings();
  // A name against a digit: they differ whenever a mode is stored, so the old mode's options always go.
  const bool differs = std::strncmp(last.mode.c_str(), info->wanMethod.c_str(), last.mode.size()) != 0;
  if (differs && delLastModePara(last.mode.c_str(), last.mode.size()) != 0) return 1;
  report_missing_section("network", "wan");
  write_ranged(*info, kAutoSelect);
  write_ipv6_method(std::atoi(info->wanIPv6Method.c_str()));
  write_ranged(*info, kVneAutoChange);
  log_debug("globalIp = %s", uci::Section("network", "lan").read_or("globalIp", 4, "").c_str());
  SetDhcpMode();
  write_method(*info, last);
  report_missing_section("ecm", "global");
  write_ranged(*info, kAcceleration);
  report_missing_section("upnpd", "config");
  write_ranged(*info, kUpnp);
  write_ranged(*info, kCaptivePortal);
  return 0;
}

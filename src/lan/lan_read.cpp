// Reading of the LAN settings.
#include <cstdlib>

#include "lan/lan_live.h"
#include "lan/lan_settings.h"
#include "platform/file.h"
#include "platform/log.h"
#include "platform/process.h"
#include "uci_section.h"
#include "unit/operating_mode.h"

namespace {

constexpr std::size_t kNumberSize = 32;
constexpr std::size_t kIpv6TextMax = 63;

bool is_lan_dhcp_server_on() { return uci::Section("dhcp", "lan").read_or("ignore", kNumberSize, "") != "1"; }

std::string element_or_none(const std::vector<std::string>& elements, std::size_t index) {
  return index < elements.size() && !elements[index].empty() ? elements[index] : kAddressNotFound;
}

void read_live_gateway_and_dns(LanSettings& settings) {
  settings.ipv4_gateway = parse_default_gateway(platform::run_shell("ip route | grep 'default via'").output);
  const auto servers = parse_nameservers(platform::read_file(kResolvConf).value_or(""), true, kIpv4TextSize - 1);
  settings.ipv4_dns1 = element_or_none(servers, 0);
  settings.ipv4_dns2 = element_or_none(servers, 1);
}

// The IPv6 addresses. Gateway and DNS are asked for only where the unit is a client of another router.
void read_ipv6(LanSettings& settings, bool is_client) {
  const std::string interface = platform::run_shell("ifconfig br-lan").output;
  settings.ipv6_local_address = settings.ipv6_gateway = settings.ipv6_dns1 = settings.ipv6_dns2 = kAddressNotFound;
  settings.ipv6_global_address = parse_inet6(interface, "Scope:Global");
  if (settings.ipv6_auto_ip == 0) return;
  settings.ipv6_local_address = parse_inet6(interface, "Scope:Link");
  if (!is_client) return;
  settings.ipv6_gateway = parse_default_gateway(platform::run_shell("ip -6 r s").output);
  const auto servers = parse_nameservers(platform::read_file(kResolvConf).value_or(""), false, kIpv6TextMax);
  settings.ipv6_dns1 = element_or_none(servers, 0);
  settings.ipv6_dns2 = element_or_none(servers, 1);
}

// False (logged) for a protocol that the LAN never has.
bool read_dhcp_client(LanSettings& settings, const unit::OperatingMode& mode, bool is_dhcp_server_on) {
  const std::string proto = lan_section().read_or("proto", kNumberSize, "static");
  if (proto != "dhcp" && proto != "static") {
    log_error_as("cmd_get_lan_netowrk", "Unkown value of\tnetwork.lan.proto by uci get api \n");
    return false;
  }
  settings.dhcp_client = proto == "dhcp" ? 1 : 0;
  if (mode.is_repeater() && is_dhcp_server_on) settings.dhcp_client = 2;
  return true;
}

}  // namespace

int is_ap_or_repeater_mode() {
  const std::optional<unit::OperatingMode> mode = unit::operating_mode();
  if (!mode) log_error("Fail to get system.@system[0].op_mode value by uci api\n");
  return mode && mode->is_client() ? 1 : 0;
}

void get_gateway_and_dns_by_uci(std::string& gateway, std::string& dns1, std::string& dns2) {
  constexpr std::size_t kDnsSlot = kIpv4TextSize - 1;  // an element that fills its slot has no terminator
  gateway = lan_section().read_or("gateway", kIpv4TextSize, kAddressNotFound);
  const auto servers = lan_section().read_list("dns", kDnsSlot, 2).value_or(std::vector<std::string>{});
  dns1 = element_or_none(servers, 0);
  dns2 = element_or_none(servers, 1);
}

int cmd_get_lan_netowrk(LanSettings& settings) {
  const unit::OperatingMode mode = unit::operating_mode_or_none();
  const bool is_dhcp_server_on = is_lan_dhcp_server_on();
  const std::optional<std::string> mac = uci::Section("network", "@device[0]").read("macaddr", kNumberSize);
  if (!mac) log_error("Fail to get network.lan.macaddr value by uci api\n");
  settings.mac_address = mac.value_or("");

  const std::optional<std::string> protection = lan_section().read("globalIp", kNumberSize);
  if (!protection) {
    log_error("Fail to get network.lan.globalIp by uci api\n");
    return 1;
  }
  settings.global_ip_protection = std::atoi(protection->c_str()) != 0 ? 1 : 0;

  if (!read_dhcp_client(settings, mode, is_dhcp_server_on)) return 1;

  const std::optional<LanAddress> live = read_lan_address();
  if (!live) {
    log_error(" fial to get ipv4 addr and netsmask\n");
    return 1;
  }
  settings.ipv4_address = live->address;
  settings.ipv4_mask = live->mask;

  const bool is_client = mode.is_client();
  if (is_client && settings.dhcp_client != 0) read_live_gateway_and_dns(settings);
  if (is_client && settings.dhcp_client == 0) {
    get_gateway_and_dns_by_uci(settings.ipv4_gateway, settings.ipv4_dns1, settings.ipv4_dns2);
  }

  const std::optional<std::string> ipv6 = lan_section().read("ipv6", kNumberSize);
  if (!ipv6) {
    log_error("Fail to get network.lan.ipv6 value by uci api\n");
    return 1;
  }
  settings.ipv6_auto_ip = std::atoi(ipv6->c_str()) != 0 ? 5 : 0;
  read_ipv6(settings, is_client);
  return 0;
}

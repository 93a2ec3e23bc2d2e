// The LAN interface's settings: reading them from UCI and the live system, writing and applying them.
#pragma once

#include <string>
#include <vector>

#include "uci_section.h"

// What GET reports and POST fills. Address texts hold at most 31 bytes (IPv4) or 63 (IPv6).
struct LanSettings {
  std::string mac_address;
  std::string ipv4_address;
  std::string ipv4_mask;
  std::string ipv4_gateway;
  std::string ipv4_dns1;
  std::string ipv4_dns2;
  int global_ip_protection = 0;
  int dhcp_client = 0;   // 0 static, 1 DHCP client, 2 (read only) repeater with the LAN DHCP server on
  int ipv6_auto_ip = 0;  // 5 is the system's encoding of "on"
  std::string ipv6_global_address;
  std::string ipv6_local_address;
  std::string ipv6_gateway;
  std::string ipv6_dns1;
  std::string ipv6_dns2;
};

inline constexpr const char* kAddressNotFound = "None";
inline constexpr std::size_t kIpv4TextSize = 32;  // with the terminating NUL

inline uci::Section lan_section() { return {"network", "lan"}; }

// 1 when the stored mode is that of a client of another router, else 0, also when it cannot be read.
int is_ap_or_repeater_mode();

// 0 on success, 1 on failure; `settings` is then partly filled.
int cmd_get_lan_netowrk(LanSettings& settings);

// Writes and commits the settings and starts the network reload. 0 on success, 1 on failure; what was written before a
// failure stays. `settings.dhcp_client` is forced to 0 in router mode.
int cmd_set_lan_network(LanSettings& settings);

// 1 when address or mask differ from the live ones of br-lan, else 0 (also when those cannot be asked for).
int is_change_lan_setting(const std::string& address, const std::string& mask);

// Replaces network.lan.dns. `dns2` may be empty. 0 on success, 1 on failure.
int set_lan_dns(const std::string& dns1, const std::string& dns2);

// Deletes the static address, DNS, gateway and mask. Always 0.
int remove_lan_static_config();

// network.lan.gateway and the first two of network.lan.dns; "None" for what is missing.
void get_gateway_and_dns_by_uci(std::string& gateway, std::string& dns1, std::string& dns2);

// Puts the backup of /tmp/resolv.conf.auto back when that file is missing or empty. 0 when there is DNS now, else 1.
int check_and_restore_dns();

// Starts the daemon that reloads the network after the answer is out.
void safe_execute_network_reload();

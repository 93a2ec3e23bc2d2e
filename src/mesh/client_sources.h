// Where clients are seen: the ARP table, the Wi-Fi driver, the bridge.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "mesh/client_table.h"

// "A.B.C.0/24" of an address; "192.168.0.0/24" (and a log line) for a text that is none.
std::string get_network_subnet(std::string_view ip);

// Flushes and refills the kernel's ARP table of br-lan by an active scan.
void refresh_arp();

// Complete rows of br-lan.
ClientTable parse_arp_clients(std::string_view proc_net_arp);
ClientTable collect_arp_clients();

// Stations of the driver's list; those of an MLD are known by their MLD address.
ClientTable parse_wifi_clients(std::string_view client_list);
ClientTable collect_wifi_clients();

// The bridge port of an interface, from its port_no file ("0x2" or "2"); nullopt without one.
std::optional<int> get_interface_port(const char* ifname);

// The ports that MACs were learned on, out of what `brctl showmacs` printed; of a MAC that stands there twice, the
// first.
class BridgePorts {
 public:
  // A line of the output, of which the first is a heading.
  void add(const std::string& line);
  [[nodiscard]] std::optional<int> of(std::string_view mac) const;

 private:
  std::unordered_map<std::uint64_t, int> ports_;
  bool is_heading_ = true;
};
// The bridge port that one MAC was learned on; nullopt when it was not.
std::optional<int> get_port_by_mac(std::string_view showmacs, std::string_view mac);

// Tells wired devices by the bridge ports of eth0 and eth2. eth1 is the WAN port and never counts.
class WiredPorts {
 public:
  bool is_wired_device(std::string_view mac);

 private:
  void read();
  bool read_ = false;
  std::optional<int> eth0_;
  std::optional<int> eth2_;
  BridgePorts ports_;
};

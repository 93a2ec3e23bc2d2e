// The mesh as a tree: the main router, its agents, and the stations seen behind each, read from the daemon's dump.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mesh/dump_lines.h"
#include "platform/short_text.h"

inline constexpr std::size_t kIpv4Length = 15;

// Connection types (how a device or station reaches its parent) are texts: "ETHER", "Wireless", "WLAN_MLO_24G",
// "WLAN_MLO_5G", "WLAN_MLO_6G", "WLAN_MLO_24G_5G", "WLAN_MLO_5G_6G", "WLAN_MLO_24G_5G_6G".

// A client seen behind a device.
struct TopologyStation {
  platform::ShortText<kMacLength> mac;
  platform::ShortText<15> connectionType;
  int level = 0;  // its device's level + 1
};

// One 1905.1 device. Parent and children are positions in TopologyInfo::devices.
struct TopologyDevice {
  platform::ShortText<kMacLength> mac;
  platform::ShortText<kIpv4Length> ip;
  platform::ShortText<18> connectionType;  // empty for the root
  int level = 0;                           // hops to the root
  std::vector<TopologyStation> stations;
  std::optional<std::size_t> parent;
  std::vector<std::size_t> children;  // in the order of discovery
  bool hasLinks = false;              // a station or a child was attached
};

// All devices in the order of the dump, those without a place in the tree included. Released with its owner.
struct TopologyInfo {
  std::vector<TopologyDevice> devices;
  std::optional<std::size_t> root;
  bool hasAgent = false;  // the root has a child or a station

  [[nodiscard]] const TopologyDevice* root_device() const { return root ? &devices[*root] : nullptr; }
};

// What the parser asks the system for; tests answer themselves.
struct TopologySources {
  std::function<std::optional<std::string>(const std::string& mac)> ip_of_mac;  // from the ARP table
  std::function<int()> mesh_mode;  // button_mesh.easymesh.mode; any other number than 0, 1, 2 when unreadable
};

// Never fails: a text that is no dump gives a tree without a root. Takes time linear in the text's length.
TopologyInfo parse_topology(DumpLines dump, const TopologySources& sources);
TopologyInfo parse_topology(std::string_view dump, const TopologySources& sources);
// The same of lines that were read from the daemon, asking `arp` and UCI.
TopologyInfo parse_topology(DumpLines dump);

// Asks the mesh daemon. Takes 1 to 10 seconds by design: the daemon needs them. nullopt without an op_mode, or when
// the console is missing or prints nothing.
std::optional<DumpLines> get_topology_dump();

// 0 and the address that `arp` knows for the MAC, or 1.
int arp_lookup_ip(std::string_view mac, std::string& ip);

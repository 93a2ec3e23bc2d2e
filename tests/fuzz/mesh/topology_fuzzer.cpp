// Any bytes in place of a dump: they become a tree, and what is asked of trees keeps its bounds.
//
//   topology_fuzzer CORPUS tests/unit/mesh/fixtures -dict=tests/fuzz/mesh/topology.dict
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>

#include "mesh/agent_info.h"
#include "mesh/agent_topology.h"
#include "mesh/arp_table.h"
#include "mesh/backhaul.h"
#include "mesh/client_scenarios.h"
#include "mesh/client_sources.h"
#include "mesh/topology.h"

namespace {

constexpr std::size_t kStationTypeMax = 15;
constexpr std::size_t kDeviceTypeMax = 31;

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

// Every other MAC has an address; the mesh mode depends on the text's length.
TopologySources sources_for(std::string_view dump) {
  return {.ip_of_mac =
              [](const std::string& mac) {
                const bool is_known = static_cast<unsigned char>(mac.back()) % 2 == 0;
                return is_known ? std::optional<std::string>("192.168.100.200 ") : std::nullopt;
              },
          .mesh_mode = [mode = static_cast<int>(dump.size() % 4)] { return mode; }};
}

void check_devices(const TopologyInfo& info) {
  std::set<std::string> macs;
  for (const TopologyDevice& device : info.devices) {
    require(!device.mac.empty() && device.mac.size() <= kMacLength, "a device's MAC");
    require(!device.ip.empty() && device.ip.size() <= kIpv4Length, "a device's address");
    require(device.connectionType.size() <= kDeviceTypeMax, "a device's connection type");
    require(macs.emplace(device.mac.view()).second, "a device stands twice");
    require(device.hasLinks || device.children.empty(), "children without links");
    for (const TopologyStation& station : device.stations) {
      require(!station.mac.empty() && station.mac.size() <= kMacLength, "a station's MAC");
      require(!station.connectionType.empty() && station.connectionType.size() <= kStationTypeMax, "a station's type");
      require(station.level > 0, "a station's level");
    }
  }
}

// Parents and children agree, and every way up ends.
void check_links(const TopologyInfo& info) {
  std::size_t children = 0;
  std::size_t parents = 0;
  for (std::size_t position = 0; position < info.devices.size(); ++position) {
    const TopologyDevice& device = info.devices[position];
    children += device.children.size();
    if (device.parent) ++parents;
    for (const std::size_t child : device.children) {
      require(child < info.devices.size() && info.devices[child].parent == position, "a child of another parent");
    }
    std::size_t hops = 0;
    for (std::optional<std::size_t> above = device.parent; above; above = info.devices[*above].parent) {
      require(++hops < info.devices.size(), "a device is its own ancestor");
    }
  }
  require(children == parents, "a child stands twice");
}

std::size_t check_root(const TopologyInfo& info) {
  const TopologyDevice* root = info.root_device();
  require((root == nullptr) == info.devices.empty(), "devices without a root");
  if (root == nullptr) return 0;
  require(!root->parent && root->level == 0 && root->connectionType.empty(), "the root has a parent");
  require(info.hasAgent == root->hasLinks, "hasAgent is not the root's");
  std::set<std::string> owned;
  std::vector<std::size_t> waiting{*info.root};
  std::size_t reached = 0;
  while (!waiting.empty()) {
    const TopologyDevice& device = info.devices[waiting.back()];
    waiting.pop_back();
    require(++reached <= info.devices.size(), "a device is reached twice");
    std::set<std::string> own;
    for (const TopologyStation& station : device.stations) own.emplace(station.mac.view());
    for (const std::string& mac : own) require(owned.insert(mac).second, "a station behind two devices");
    waiting.insert(waiting.end(), device.children.begin(), device.children.end());
  }
  return reached;
}

void check_agent_rows(const TopologyInfo& info, std::size_t reached) {
  const std::vector<AgentInfo> rows = topology_to_agents(info);
  require(rows.size() == std::min(reached, kMostAgentRows), "rows of the agent list");
  for (std::size_t row = 0; row < rows.size(); ++row) {
    require(rows[row].agentDeviceNumber == static_cast<int>(row), "a row's number");
    require(rows[row].connectionType >= 0 && rows[row].connectionType <= 7, "a row's connection type");
    require((rows[row].connectParentMacAddress == "None") == (row == 0), "a row's parent");
  }
}

void check_clients(const TopologyInfo& info, std::string_view text) {
  ClientTable table = parse_wifi_clients(text);
  require(table.rows().size() <= 127, "rows of the driver's list");
  int satellites = 0;
  for (const ClientRecord& row : collect_topology_clients(info, table)) {
    require(row.agentIndex >= 0 && row.agentIndex < kMostSatellites, "a satellite's number");
    require(!row.isMeshDevice || row.agentIndex == satellites++, "two satellites share a number");
    table.merge(row);
  }
  const ClientTable arp = parse_arp_clients(text);
  for (const ClientRecord& row : arp.rows()) table.merge(row);
  for (const ClientRecord& row : table.rows()) {
    require(row.mac.size() <= kMacLength && row.rssi.size() <= 7 && row.ip.size() <= kIpv4Length, "a row's texts");
    require(table.find(row.mac) == &row, "a row that is not found by its MAC");
  }
}

void check_agent_view(std::string_view dump) {
  const AgentTopo topology = parse_agent_topology(DumpLines(dump));
  require(topology.agents.size() <= 16, "agents of the agent's view");
  ClientTable devices;
  collect_topology_agent_devices(topology, parse_wifi_clients(dump), devices);
  require(devices.rows().size() <= topology.legacy.size() + 127, "devices of the agent's view");
}

void check_backhaul(const TopologyInfo& info, std::string_view dump) {
  constexpr std::size_t kAsked = 8;  // devices that are asked about each other
  const DumpIndex index{DumpLines(dump)};
  BackhaulReader reader(index, [] { return 0; });
  const std::size_t count = std::min(info.devices.size(), kAsked);
  for (std::size_t owner = 0; owner < count; ++owner) {
    require(!reader.get_backhaul_type_from_remote(info.devices[owner].mac).empty(), "a type from the remote table");
    for (std::size_t target = 0; target < count; ++target) {
      std::string interface_mac;
      reader.get_backhaul_type_via_bridge(info.devices[owner].mac, info.devices[target].mac, &interface_mac);
      require(interface_mac.size() <= kMacLength, "an interface's MAC");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view dump(reinterpret_cast<const char*>(data), size);
  const TopologyInfo info = parse_topology(dump, sources_for(dump));
  check_devices(info);
  check_links(info);
  check_agent_rows(info, check_root(info));
  check_clients(info, dump);
  check_agent_view(dump);
  check_backhaul(info, dump);
  parse_arp_table(dump, dump.substr(0, kMacLength));
  get_port_by_mac(dump, dump.substr(0, kMacLength));
  return 0;
}

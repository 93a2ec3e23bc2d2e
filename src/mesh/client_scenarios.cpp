// The three ways to combine the sources.
#include "mesh/client_scenarios.h"

#include "mesh/backhaul.h"
#include "mesh/client_sources.h"

namespace {

constexpr int kRouterItself = -1;
constexpr int kWired = 0;
constexpr int k24GHz = 1;

ClientRecord satellite_row(const TopologyDevice& device, int number) {
  ClientRecord row;
  row.mac = normalize_mac(device.mac);
  row.ip = device.ip;
  row.connectionType = connection_type_code(device.connectionType);
  row.isWireless = row.connectionType != kWired;
  row.isMeshDevice = true;
  row.agentIndex = number;
  row.fromTopology = true;
  return row;
}

ClientRecord station_row(const TopologyStation& station, int number, const ClientTable& wifi) {
  ClientRecord row;
  row.mac = normalize_mac(station.mac);
  row.agentIndex = number;
  row.fromTopology = true;
  if (const ClientRecord* known = wifi.find(row.mac)) {
    row.connectionType = known->connectionType;
    row.rssi = known->rssi;
  } else {
    row.connectionType = connection_type_code(station.connectionType);
  }
  row.isWireless = row.connectionType != kWired;
  return row;
}

void merge_wifi_over_arp(ClientTable& clients, const ClientRecord& wifi) {
  ClientRecord* known = clients.find(wifi.mac);
  if (known == nullptr) {
    clients.merge(wifi);
    return;
  }
  known->connectionType = wifi.connectionType;
  known->rssi = wifi.rssi;
  known->isWireless = true;
  known->fromWifi = true;
}

}  // namespace

ClientTable handle_non_mesh_scenario(ClientTable clients) {
  const ClientTable wifi = collect_wifi_clients();
  for (const ClientRecord& row : wifi.rows()) merge_wifi_over_arp(clients, row);
  WiredPorts ports;
  for (ClientRecord& row : clients.rows()) {
    if (row.connectionType != kWired) continue;
    if (ports.is_wired_device(row.mac)) {
      row.agentIndex = kRouterItself;
    } else {  // an unconfirmed device is taken to be on 2.4 GHz
      row.connectionType = k24GHz;
      row.isWireless = true;
    }
  }
  return clients;
}

std::deque<ClientRecord> collect_topology_clients(const TopologyInfo& topology, const ClientTable& wifi) {
  std::deque<ClientRecord> rows;  // many grow without a copy of them all
  int number = 0;
  for (const TopologyDevice& device : topology.devices) {
    for (const std::size_t position : device.children) {
      if (number >= kMostSatellites) return rows;
      const TopologyDevice& child = topology.devices[position];
      if (!child.mac.empty()) rows.push_back(satellite_row(child, number));
      for (const TopologyStation& station : child.stations) rows.push_back(station_row(station, number, wifi));
      ++number;
    }
  }
  return rows;
}

ClientTable handle_controller_scenario(const ClientTable& arp, const TopologyInfo& topology) {
  ClientTable wifi = collect_wifi_clients();
  ClientTable clients;
  for (ClientRecord& row : wifi.rows()) {
    row.agentIndex = kRouterItself;
    clients.merge(row);
  }
  ClientTable satellites;
  std::deque<ClientRecord> rows = collect_topology_clients(topology, wifi);
  for (; !rows.empty(); rows.pop_front()) {  // so that a long table does not stand twice
    (rows.front().isMeshDevice ? satellites : clients).merge(rows.front());
  }
  WiredPorts ports;
  for (const ClientRecord& row : arp.rows()) {
    const bool known = clients.find(row.mac) != nullptr || satellites.find(row.mac) != nullptr;
    if (!known && ports.is_wired_device(row.mac)) clients.merge(row);
  }
  return clients;
}

void collect_topology_agent_devices(const AgentTopo& topology, const ClientTable& wifi, ClientTable& devices) {
  for (const ClientRecord& client : wifi.rows()) {
    for (const std::string& agent : topology.agents) {
      if (mac_equal(agent, client.mac)) continue;
      ClientRecord row = client;
      row.agentIndex = kRouterItself;
      devices.merge(row);
    }
  }
  for (const std::string& legacy : topology.legacy) {
    for (const std::string& agent : topology.agents) {
      if (mac_equal(agent, legacy)) continue;
      ClientRecord row;
      row.mac = normalize_mac(legacy);
      row.fromTopology = true;
      devices.merge(row);
    }
  }
}

ClientTable handle_agent_scenario(const AgentTopo& topology) {
  ClientTable devices;
  collect_topology_agent_devices(topology, collect_wifi_clients(), devices);
  for (ClientRecord& row : devices.rows()) row.agentIndex = kRouterItself;
  return devices;
}

// GET /api/v1/router/client-list: every device on the router's LAN.
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "answer/answer.h"
#include "handlers.h"
#include "mesh/agent_topology.h"
#include "mesh/client_scenarios.h"
#include "mesh/client_sources.h"
#include "mesh/topology_log.h"
#include "platform/log.h"
#include "platform/memory.h"
#include "unit/mesh.h"

namespace {

void copy_addresses(const ClientTable& arp, ClientTable& clients) {
  for (ClientRecord& row : clients.rows()) {
    if (const ClientRecord* known = arp.find(row.mac)) row.ip = known->ip;
  }
}

// nullopt when the mesh cannot be asked.
std::optional<ClientTable> collect_mesh_clients(const unit::MeshPart& mesh, const ClientTable& arp) {
  std::optional<DumpLines> dump = get_topology_dump();
  if (!dump) {
    if (mesh.is_agent()) log_error_as("handle_get_client_list", "Failed to get agent topology data");
    return std::nullopt;
  }
  if (mesh.is_agent()) {
    const AgentTopo topology = parse_agent_topology(*dump);
    print_agent_topology(&topology);
    return handle_agent_scenario(topology);
  }
  const TopologyInfo topology = parse_topology(*std::move(dump));
  print_topology(topology);
  return handle_controller_scenario(arp, topology);
}

std::optional<ClientTable> collect_clients(const unit::MeshPart& mesh) {
  ClientTable arp = collect_arp_clients();
  if (!mesh.is_on) return handle_non_mesh_scenario(std::move(arp));  // whose rows have their addresses
  std::optional<ClientTable> clients = collect_mesh_clients(mesh, arp);
  if (clients) copy_addresses(arp, *clients);
  return clients;
}

json::ObjectText client_entry(const ClientRecord& row) {
  json::ObjectText entry;
  entry.add("macAddress", row.mac.view()).add("connectionType", row.connectionType);
  entry.add("rssi", std::atoi(row.rssi.c_str()));
  return entry;
}

// The signal is a text here, unlike in clientList. Kept as it is.
json::ObjectText satellite_entry(const ClientRecord& row) {
  json::ObjectText entry;
  entry.add("macAddress", row.mac.view()).add("connectionType", row.connectionType);
  entry.add("rssi", row.rssi.empty() ? std::string_view("0") : row.rssi.view());
  return entry;
}

// "easyMesh01" to "easyMesh09", "easyMesh10" to "easyMesh16".
std::string satellite_key(int number) { return (number < 9 ? "easyMesh0" : "easyMesh") + std::to_string(number + 1); }

void add_satellites(json::ObjectText& document, const ClientTable& clients) {
  for (int number = 0; number < kMostSatellites; ++number) {
    const auto is_behind = [number](const ClientRecord& row) { return !row.isMeshDevice && row.agentIndex == number; };
    if (std::ranges::none_of(clients.rows(), is_behind)) continue;
    document.add_list(satellite_key(number).c_str(), [&](json::ListText& entries) {
      for (const ClientRecord& row : clients.rows()) {
        if (is_behind(row)) entries.add(satellite_entry(row));
      }
    });
  }
}

json::ObjectText build_document(const unit::MeshPart& mesh, const ClientTable& clients) {
  constexpr std::size_t kEntrySize = 96;  // the longest: an own text of 17 bytes in a MAC's place apart
  json::ObjectText document = json::result_text(0);
  document.reserve((clients.rows().size() + std::size_t{2} * kMostSatellites) * kEntrySize);
  document.add("numOfClient", static_cast<int>(clients.rows().size()));
  document.add_list("clientList", [&](json::ListText& list) {
    for (const ClientRecord& row : clients.rows()) {
      const bool behind_satellite = mesh.is_controller() && row.agentIndex != -1;
      if (!row.isMeshDevice && !behind_satellite) list.add(client_entry(row));
    }
  });
  if (mesh.is_on && mesh.is_controller()) add_satellites(document, clients);
  return document;
}

// The document; the tables that it is made of are gone. nullopt when the mesh cannot be asked.
std::optional<std::string> describe_clients(const unit::MeshPart& mesh) {
  const std::optional<ClientTable> clients = collect_clients(mesh);
  return clients ? std::optional(build_document(mesh, *clients).text()) : std::nullopt;
}

}  // namespace

// Answers nothing when the mesh cannot be asked. Kept as it is.
int handle_get_client_list(FCGX_Request* request) {
  const unit::MeshPart mesh = unit::read_mesh_part();
  refresh_arp();
  const std::optional<std::string> text = describe_clients(mesh);
  if (!text) return mesh.is_agent() ? 1 : -1;
  platform::return_free_memory();
  topo_log_document("handle_get_client_list", *text);
  answer(request, *text);
  return -1;
}

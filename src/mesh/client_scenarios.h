// How the sources become one list: without a mesh, on the controller, on a satellite.
#pragma once

#include <deque>

#include "mesh/agent_topology.h"
#include "mesh/client_table.h"
#include "mesh/topology.h"

inline constexpr int kMostSatellites = 16;

// The rows of `clients` are those of the ARP table.
ClientTable handle_non_mesh_scenario(ClientTable clients);
ClientTable handle_controller_scenario(const ClientTable& arp, const TopologyInfo& topology);
ClientTable handle_agent_scenario(const AgentTopo& topology);

// The satellites, numbered through the whole walk of the tree's devices, and the clients behind them. Signal and bands
// of a client that the driver knows, too, are the driver's.
std::deque<ClientRecord> collect_topology_clients(const TopologyInfo& topology, const ClientTable& wifi);

// Every Wi-Fi row and every legacy wired device once for each agent MAC that differs from it: with no agents nothing.
void collect_topology_agent_devices(const AgentTopo& topology, const ClientTable& wifi, ClientTable& devices);

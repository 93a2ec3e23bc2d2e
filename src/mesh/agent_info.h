// The mesh agents as the agent list shows them.
#pragma once

#include <string>
#include <vector>

#include "answer/json_text.h"
#include "mesh/topology.h"

inline constexpr std::size_t kMostAgentRows = 16;  // the main router's own row included

struct AgentInfo {
  int agentDeviceNumber = 0;  // position in the walk; 0 is the main router
  std::string model;          // at most 63 bytes
  std::string macAddress;
  std::string ipv4Address;
  std::string connectParentMacAddress = "None";
  int location = 9;
  std::string locationCustom;
  int connectionType = 0;
  int linkQuality = 100;
  int ledStatus = 0;  // 1 when the row has a MAC
};

// The root and what hangs below it, depth first, parents before their children. A device beyond the last row is left
// out with all that hangs below it. No row without a root: what the daemon printed was no dump.
std::vector<AgentInfo> topology_to_agents(const TopologyInfo& info);

// Host names from the DHCP leases. 0, or 1 on failure; rows without a lease get the product's own model name.
int get_agent_model_info(std::vector<AgentInfo>& agents);

// 0, or 1 when an argument is missing.
int add_agent_info_to_json_array(json::ListText* array, const AgentInfo* agent);

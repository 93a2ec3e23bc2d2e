// The mesh as an agent sees it.
#pragma once

#include <string>
#include <vector>

#include "mesh/dump_lines.h"

// The devices that the agent sees, and its legacy wired devices.
struct AgentTopo {
  std::vector<std::string> agents;  // MACs, at most 16
  std::vector<std::string> legacy;  // MACs
};
AgentTopo parse_agent_topology(const DumpLines& dump);
void print_agent_topology(const AgentTopo* topology);

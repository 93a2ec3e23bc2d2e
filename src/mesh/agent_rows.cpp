// The tree of devices as the rows of the agent list.
#include "mesh/agent_info.h"
#include "mesh/backhaul.h"

namespace {

AgentInfo agent_of(const TopologyInfo& info, std::size_t device_position, int number) {
  const TopologyDevice& device = info.devices[device_position];
  AgentInfo agent;
  agent.agentDeviceNumber = number;
  agent.macAddress = device.mac.view();
  agent.ipv4Address = device.ip.view();
  if (number != 0 && device.parent) agent.connectParentMacAddress = info.devices[*device.parent].mac.view();
  agent.connectionType = number == 0 ? 0 : connection_type_code(device.connectionType);
  return agent;
}

}  // namespace

std::vector<AgentInfo> topology_to_agents(const TopologyInfo& info) {
  std::vector<AgentInfo> agents;
  std::vector<std::size_t> waiting;
  if (info.root) waiting.push_back(*info.root);
  while (!waiting.empty() && agents.size() < kMostAgentRows) {
    const std::size_t device = waiting.back();
    waiting.pop_back();
    agents.push_back(agent_of(info, device, static_cast<int>(agents.size())));
    const std::vector<std::size_t>& children = info.devices[device].children;
    waiting.insert(waiting.end(), children.rbegin(), children.rend());
  }
  return agents;
}

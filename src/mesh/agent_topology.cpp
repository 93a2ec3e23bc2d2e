// The mesh as an agent sees it.
#include "mesh/agent_topology.h"

#include <unordered_set>

#include "mesh/dump_index.h"
#include "mesh/topology_log.h"
#include "platform/text.h"

namespace {

constexpr std::size_t kMostAgents = 16;

// A list that takes each text once.
class UniqueList {
 public:
  explicit UniqueList(std::vector<std::string>& list) : list_(list) {}
  void add(const std::string& text) {
    if (!text.empty() && known_.insert(text).second) list_.push_back(text);
  }

 private:
  std::vector<std::string>& list_;
  std::unordered_set<std::string> known_;
};

// Walks the legacy tables: stations of Ethernet ports, the WAN port eth1 left out.
class LegacyReader {
 public:
  // The MAC of a wired device on this line; empty when it holds none.
  std::string read(std::string_view line) {
    if (platform::holds(line, "Legacy Devices:")) {
      in_table_ = true;
      is_wired_ = false;
      return {};
    }
    if (platform::holds(line, "Radios:")) in_table_ = false;
    if (!in_table_) return {};
    if (const auto name = text_behind(line, "Interface ", ":")) {
      is_wired_ = platform::holds(*name, "eth") && *name != "eth1";
      return {};
    }
    line = platform::trim_start(line);
    if (!is_wired_ || !platform::holds(line, ":") || line.size() < kMacLength) return {};
    return std::string(line.substr(0, kMacLength));
  }

 private:
  bool in_table_ = false;
  bool is_wired_ = false;
};

}  // namespace

AgentTopo parse_agent_topology(const DumpLines& dump) {
  AgentTopo topology;
  UniqueList agents(topology.agents);
  UniqueList legacy(topology.legacy);
  LegacyReader reader;
  for (std::size_t number = 0; number < dump.size(); ++number) {
    const std::string_view line = dump[number];
    if (is_device_header(line)) {
      if (topology.agents.size() < kMostAgents) agents.add(header_mac(line));
      continue;
    }
    legacy.add(reader.read(line));
  }
  return topology;
}

void print_agent_topology(const AgentTopo* topology) {
  if (topology == nullptr) {
    console_print("AgentTopo is NULL\n");
    return;
  }
  topo_log("===== Agent Topology =====\n");
  topo_log("Agent count: %d\n", static_cast<int>(topology->agents.size()));
  int number = 0;
  for (const std::string& mac : topology->agents) topo_log("  Agent[%d]: %s\n", number++, mac.c_str());
  topo_log("Legacy wired device count: %d\n", static_cast<int>(topology->legacy.size()));
  number = 0;
  for (const std::string& mac : topology->legacy) topo_log("  Legacy[%d]: %s\n", number++, mac.c_str());
  topo_log("==========================\n");
}

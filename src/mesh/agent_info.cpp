// GET /api/v1/mesh/agent-info: the agents below this controller.
#include "mesh/agent_info.h"

#include <array>
#include <cstdio>

#include "answer/answer.h"
#include "handlers.h"
#include "mesh/topology_log.h"
#include "platform/file.h"
#include "platform/log.h"
#include "platform/text.h"
#include "uci_section.h"
#include "unit/mesh.h"

namespace {

constexpr const char* kModel = "MX-9P300KLD";
constexpr const char* kLeasesPath = "/tmp/dhcp.leases";
constexpr std::size_t kLineSize = 1024;
constexpr std::size_t kHostNameMax = 63;

struct Lease {
  std::string mac;
  std::string host_name;
};

std::vector<Lease> parse_leases(std::string_view text) {
  std::vector<Lease> leases;
  for (const std::string& line : platform::split_lines(text, kLineSize)) {
    std::array<char, kMacLength + 1> mac{};
    std::array<char, kLineSize> host_name{};
    if (std::sscanf(line.c_str(), "%*s %17s %*s %1023s", mac.data(), host_name.data()) < 2) continue;
    leases.push_back(
        {platform::lower_case(mac.data()), std::string(platform::cut_utf8(host_name.data(), kHostNameMax))});
  }
  return leases;
}

std::string model_of(const std::vector<Lease>& leases, const std::string& mac) {
  const std::string wanted = platform::lower_case(mac);
  for (const Lease& lease : leases) {
    if (lease.mac == wanted) return lease.host_name;
  }
  log_error_as("get_agent_model_info", "Hostname not found for MAC %s, set to MX-9P300KLD", mac.c_str());
  return kModel;
}

void set_led_status(std::vector<AgentInfo>& agents) {
  for (AgentInfo& agent : agents) agent.ledStatus = agent.macAddress.empty() ? 0 : 1;
}

// False on failure, which is logged.
bool add_agents(json::ListText& array) {
  constexpr const char* kHandler = "handle_get_mesh_agent_info";
  std::optional<DumpLines> dump = get_topology_dump();
  if (!dump) {
    log_error_as(kHandler, "Failed to get topology data");
    return false;
  }
  std::vector<AgentInfo> agents = topology_to_agents(parse_topology(*std::move(dump)));
  if (agents.empty()) {
    log_error_as(kHandler, "Failed to convert topology to agents");
    return false;
  }
  if (get_agent_model_info(agents) != 0) {
    log_error_as(kHandler, "Failed to get agent model info");
    return false;
  }
  set_led_status(agents);
  for (std::size_t row = 1; row < agents.size(); ++row) add_agent_info_to_json_array(&array, &agents[row]);
  return true;
}

}  // namespace

int get_agent_model_info(std::vector<AgentInfo>& agents) {
  constexpr std::size_t kHostNameSize = 64;
  if (!uci::Section("system", "@system[0]").read("hostname", kHostNameSize)) {
    log_error("Failed to get hostname");
    return 1;
  }
  if (!agents.empty()) agents[0].model = kModel;  // whatever the router's own host name is
  if (agents.size() <= 1) return 0;               // nobody to name: a router without leases has no file of them
  const std::optional<std::string> text = platform::read_file(kLeasesPath);
  if (!text) {
    std::printf("Failed to open file");
    std::fflush(stdout);
    return 1;
  }
  const std::vector<Lease> leases = parse_leases(*text);
  for (std::size_t row = 1; row < agents.size(); ++row) agents[row].model = model_of(leases, agents[row].macAddress);
  return 0;
}

int add_agent_info_to_json_array(json::ListText* array, const AgentInfo* agent) {
  if (array == nullptr || agent == nullptr) {
    log_error("Invalid input parameters to add_agent_info_to_json_array");
    return 1;
  }
  json::ObjectText row;
  row.add("agentDeviceNumber", agent->agentDeviceNumber);
  row.add("model", agent->model);
  row.add("macAddress", agent->macAddress);
  row.add("ipv4Address", agent->ipv4Address);
  row.add("connectParentMacAddress", agent->connectParentMacAddress);
  row.add("location", agent->location);
  row.add("locationCustom", agent->locationCustom);
  row.add("connectionType", agent->connectionType);
  row.add("linkQuality", agent->linkQuality);
  row.add("ledStatus", agent->ledStatus);
  array->add(std::move(row));
  return 0;
}

int handle_get_mesh_agent_info(FCGX_Request* request) {
  int role = kMeshRoleNone;
  if (get_mesh_role_value(role) != 0) {
    log_error("Failed to get mesh role");
    answer_plain(request, answers::kUnusable);
    return 1;
  }
  json::ListText agents;
  if (role == kMeshRoleController && !add_agents(agents)) {
    answer_plain(request, answers::kUnusable);
    return 1;
  }
  json::ObjectText document = json::success_text();
  const std::string text = document.add("agentInfo", std::move(agents)).text();
  topo_log_document("handle_get_mesh_agent_info", text);
  return answer(request, text);
}

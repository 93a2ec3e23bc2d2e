// GET and POST /api/v1/dhcp.
#include <optional>
#include <string>

#include "answer/answer.h"
#include "handlers.h"
#include "lan/dhcp_settings.h"
#include "platform/log.h"

namespace {

constexpr std::size_t kTextMax = 31;

// A missing key is told in the log and leaves 0, or an empty text.
int read_number(json_object* json, const char* key) {
  const std::optional<int> value = json::int_member(json, key);
  if (!value) log_error("%s is not found.\n", key);
  return value.value_or(0);
}

std::string read_text(json_object* json, const char* key) {
  const std::optional<std::string> value = json::text_member(json, key);
  if (!value) log_error("%s is not found.\n", key);
  return value.value_or("").substr(0, kTextMax);
}

// False when the list is none, or not `stated` long, or too long.
bool read_hosts(json_object* json, int stated, DhcpSettings& settings) {
  json_object* list = json::array_member(json, "fixedIpAllocation");
  if (list == nullptr && json::has_member(json, "fixedIpAllocation")) return false;
  const std::size_t count = list == nullptr ? 0 : json_object_array_length(list);
  if (stated < 0 || static_cast<std::size_t>(stated) != count || count > kMostFixedHosts) return false;
  for (std::size_t index = 0; index < count; ++index) {
    json_object* element = json_object_array_get_idx(list, index);
    settings.hosts.push_back({read_text(element, "ipAddress"), read_text(element, "macAddress")});
  }
  return true;
}

bool read_settings(json_object* json, DhcpSettings& settings) {
  settings.enable = read_number(json, "enable");
  settings.lease_time = read_number(json, "leaseTime");
  const int stated = read_number(json, "fixedIpCount");
  settings.start_address = read_text(json, "startAddress");
  settings.end_address = read_text(json, "endAddress");
  return read_hosts(json, stated, settings);
}

json::JsonPtr build_hosts(const DhcpSettings& settings) {
  json::JsonPtr hosts = json::new_array();
  for (const FixedHost& host : settings.hosts) {
    json::JsonPtr entry = json::new_object();
    json::add(entry.get(), "ipAddress", host.ip);
    json::add(entry.get(), "macAddress", host.mac);
    json::append(hosts.get(), std::move(entry));
  }
  return hosts;
}

}  // namespace

int handle_get_dhcp_config(FCGX_Request* request) {
  DhcpSettings settings;
  const json::JsonPtr document = json::new_object();
  json_object* root = document.get();
  if (cmd_get_dhcp(settings) != 0) {
    log_error("fun:%s,line:%d, get dhcp param error.\n", __func__, __LINE__);
    json::add(root, "result", 2);
    return answer(request, document);
  }
  json::add(root, "result", 0);
  json::add(root, "version", 1);
  json::add(root, "enable", settings.enable);
  json::add(root, "leaseTime", settings.lease_time);
  json::add(root, "startAddress", settings.start_address);
  json::add(root, "endAddress", settings.end_address);
  json::add(root, "fixedIpCount", static_cast<int>(settings.hosts.size()));
  json::add(root, "fixedIpAllocation", build_hosts(settings));
  return answer(request, document);
}

int handle_set_dhcp_config(FCGX_Request* request, const char* body) {
  if (body == nullptr || *body == '\0') {
    log_error("empty request_body is passed on seting dhcp config\n");
    return answer(request, kResultUnusable);
  }
  const json::JsonPtr json = json::parse(body);
  if (!json) {
    log_error("can't parse request_body to json format.\n");
    return answer(request, kResultUnusable);
  }
  DhcpSettings settings;
  if (!read_settings(json.get(), settings)) return answer(request, kResultUnusable);
  return answer(request, cmd_set_dhcp(settings) == 0 ? kResultOkWait20 : kResultFailed);
}

// GET and POST /api/v1/lan.
#include <optional>
#include <string>

#include "answer/answer.h"
#include "domain/ipv4.h"
#include "handlers.h"
#include "lan/lan_settings.h"
#include "platform/log.h"
#include "uci_access.h"

namespace {

// An optional member; a missing one is told in the log and leaves the field as it is.
void read_member(json_object* json, const char* key, int& field) {
  if (const auto value = json::int_member(json, key)) {
    field = *value;
  } else {
    log_error("%s is not found.\n", key);
  }
}

void read_member(json_object* json, const char* key, std::string& field) {
  if (const auto value = json::text_member(json, key)) {
    field = value->substr(0, kIpv4TextSize - 1);
  } else {
    log_error("%s is not found.\n", key);
  }
}

void read_address(json_object* json, const char* key, std::string& field) {
  read_member(json, key, field);
  if (is_valid_ip(field) != 0) field.clear();
}

// Fills `settings` from the request; false when address, mask and gateway do not fit together.
bool read_settings(json_object* json, LanSettings& settings) {
  read_member(json, "globalIpProtectionEnable", settings.global_ip_protection);
  read_member(json, "dhcpv4Enable", settings.dhcp_client);
  read_address(json, "lanIpv4Address", settings.ipv4_address);
  read_member(json, "lanIpv4SubMask", settings.ipv4_mask);
  if (is_invalid_netmask(settings.ipv4_mask) != 0) settings.ipv4_address.clear();  // the mask stays: clients rely on it

  const bool has_address = !settings.ipv4_address.empty() && !settings.ipv4_mask.empty();
  if (has_address && is_network_or_broadcast_ip(settings.ipv4_address, settings.ipv4_mask) == 1) return false;
  read_address(json, "lanIpv4Gateway", settings.ipv4_gateway);
  if (has_address && !settings.ipv4_gateway.empty() &&
      check_ip_gateway_in_Subnet(settings.ipv4_address, settings.ipv4_gateway, settings.ipv4_mask) != 0) {
    return false;
  }
  read_address(json, "lanIpv4Dns1", settings.ipv4_dns1);
  read_address(json, "lanIpv4Dns2", settings.ipv4_dns2);
  return true;
}

// A static LAN whose address was dropped or is missing would be left without one.
bool lacks_needed_address(const LanSettings& settings, const std::string& op_mode) {
  const bool is_static = op_mode == "router" || settings.dhcp_client != 1;
  return is_static && (settings.ipv4_address.empty() || settings.ipv4_mask.empty());
}

std::string_view apply_lan_network(json_object* json, const std::string& op_mode) {
  LanSettings settings;
  if (!read_settings(json, settings) || lacks_needed_address(settings, op_mode)) return kResultUnusable;
  return cmd_set_lan_network(settings) == 0 ? kResultOkWait60 : kResultFailed;
}

json::JsonPtr build_lan_document(const LanSettings& settings, bool is_client) {
  json::JsonPtr document = json::new_object();
  json_object* root = document.get();
  json::add(root, "result", 0);
  json::add(root, "version", 1);
  json::add(root, "lanMacAddress", settings.mac_address);
  json::add(root, "globalIpProtectionEnable", settings.global_ip_protection);
  json::add(root, "dhcpv4Enable", settings.dhcp_client);
  json::add(root, "lanIpv4Address", settings.ipv4_address);
  json::add(root, "lanIpv4SubMask", settings.ipv4_mask);
  if (is_client) {
    json::add(root, "lanIpv4Gateway", settings.ipv4_gateway);
    json::add(root, "lanIpv4Dns1", settings.ipv4_dns1);
    json::add(root, "lanIpv4Dns2", settings.ipv4_dns2);
  }
  json::add(root, "ipv6AutoIp", settings.ipv6_auto_ip);
  json::add(root, "lanIpv6GlobalAddress", settings.ipv6_global_address);
  json::add(root, "lanIpv6LocalAddress", settings.ipv6_local_address);
  if (is_client) {
    json::add(root, "lanIpv6Gateway", settings.ipv6_gateway);
    json::add(root, "lanIpv6Dns1", settings.ipv6_dns1);
    json::add(root, "lanIpv6Dns2", settings.ipv6_dns2);
  }
  return document;
}

}  // namespace

int handle_get_lan_network(FCGX_Request* request) {
  LanSettings settings;
  if (cmd_get_lan_netowrk(settings) != 0) {
    log_error("fail to get lan network config\n");
    return answer(request, kResultFailed);
  }
  return answer(request, build_lan_document(settings, is_ap_or_repeater_mode() == 1));
}

// No content is answered with result 1. A body that is not JSON and an unreadable op_mode are answered with nothing.
int handle_set_lan_network(FCGX_Request* request, const char* body) {
  if (body == nullptr || *body == '\0') {
    log_error("empty data is passed on seting lan network config\n");
    return answer(request, kResultUnusable);
  }
  const json::JsonPtr json = json::parse(body);
  if (!json) {
    log_error("can't parse data to json format.\n");
    return 1;
  }
  const std::optional<std::string> op_mode = uci_read("system", "@system[0]", "op_mode", kOpModeSize);
  if (!op_mode) {
    log_error("Fail to get system.@system[0].op_mode value by uci api\n");
    return 1;
  }
  log_debug("workMode:%s\n", op_mode->c_str());
  return answer(request, apply_lan_network(json.get(), *op_mode));
}

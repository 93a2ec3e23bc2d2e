// GET and POST /api/v1/lan.
#include <optional>
#include <string>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "answer/read_object.h"
#include "handlers.h"
#include "lan/ipv4.h"
#include "lan/lan_settings.h"
#include "platform/log.h"
#include "platform/text.h"
#include "unit/operating_mode.h"

namespace {

constexpr const char* kSetHandler = "handle_set_lan_network";
constexpr BodyMessages kBodyMessages{.no_content = "empty data is passed on seting lan network config\n",
                                     .no_json = "can't parse data to json format.\n",
                                     .no_object = "can't parse data to json format.\n"};

// An optional member; a missing one is told in the log and leaves the field as it is.
void read_member(const json::Object& asked, const char* key, int& field,
                 platform::LogPlace place = platform::LogPlace::here(kSetHandler)) {
  if (const auto value = asked.number(key)) {
    field = *value;
  } else {
    log_error_at(place, "%s is not found.\n", key);
  }
}

void read_member(const json::Object& asked, const char* key, std::string& field,
                 platform::LogPlace place = platform::LogPlace::here(kSetHandler)) {
  if (const auto value = asked.text(key)) {
    field = platform::cut_utf8(*value, kIpv4TextSize - 1);
  } else {
    log_error_at(place, "%s is not found.\n", key);
  }
}

void read_address(const json::Object& asked, const char* key, std::string& field,
                  platform::LogPlace place = platform::LogPlace::here(kSetHandler)) {
  read_member(asked, key, field, place);
  if (is_valid_ip(field) != 0) field.clear();
}

// is_invalid_netmask looks at a field's leading digits alone.
bool is_mask(const std::string& text) { return is_invalid_netmask(text) == 0 && check_ipv4_format(text); }

// Fills `settings` from the request; false when address, mask and gateway do not fit together.
bool read_settings(const json::Object& asked, LanSettings& settings) {
  read_member(asked, "globalIpProtectionEnable", settings.global_ip_protection);
  read_member(asked, "dhcpv4Enable", settings.dhcp_client);
  read_address(asked, "lanIpv4Address", settings.ipv4_address);
  read_member(asked, "lanIpv4SubMask", settings.ipv4_mask);
  std::erase(settings.ipv4_mask, ' ');
  if (!is_mask(settings.ipv4_mask)) settings.ipv4_address.clear();  // the mask stays: kept as it is

  const bool has_address = !settings.ipv4_address.empty() && !settings.ipv4_mask.empty();
  if (has_address && is_network_or_broadcast_ip(settings.ipv4_address, settings.ipv4_mask) == 1) return false;
  read_address(asked, "lanIpv4Gateway", settings.ipv4_gateway);
  if (has_address && !settings.ipv4_gateway.empty() &&
      check_ip_gateway_in_Subnet(settings.ipv4_address, settings.ipv4_gateway, settings.ipv4_mask) != 0) {
    return false;
  }
  read_address(asked, "lanIpv4Dns1", settings.ipv4_dns1);
  read_address(asked, "lanIpv4Dns2", settings.ipv4_dns2);
  return true;
}

// A static LAN whose address was dropped or is missing would be left without one.
bool lacks_needed_address(const LanSettings& settings, const unit::OperatingMode& mode) {
  const bool is_static = mode.is_router() || settings.dhcp_client != 1;
  return is_static && (settings.ipv4_address.empty() || settings.ipv4_mask.empty());
}

std::string_view apply_lan_network(const json::Object& asked, const unit::OperatingMode& mode) {
  LanSettings settings;
  if (!read_settings(asked, settings) || lacks_needed_address(settings, mode)) return answers::kUnusable;
  return cmd_set_lan_network(settings) == 0 ? answers::wait(60) : answers::kFailed;
}

json::ObjectText build_lan_document(const LanSettings& settings, bool is_client) {
  json::ObjectText document = json::success_text();
  document.add("lanMacAddress", settings.mac_address);
  document.add("globalIpProtectionEnable", settings.global_ip_protection).add("dhcpv4Enable", settings.dhcp_client);
  document.add("lanIpv4Address", settings.ipv4_address).add("lanIpv4SubMask", settings.ipv4_mask);
  if (is_client) {
    document.add("lanIpv4Gateway", settings.ipv4_gateway);
    document.add("lanIpv4Dns1", settings.ipv4_dns1).add("lanIpv4Dns2", settings.ipv4_dns2);
  }
  document.add("ipv6AutoIp", settings.ipv6_auto_ip);
  document.add("lanIpv6GlobalAddress", settings.ipv6_global_address);
  document.add("lanIpv6LocalAddress", settings.ipv6_local_address);
  if (is_client) {
    document.add("lanIpv6Gateway", settings.ipv6_gateway);
    document.add("lanIpv6Dns1", settings.ipv6_dns1).add("lanIpv6Dns2", settings.ipv6_dns2);
  }
  return document;
}

}  // namespace

int handle_get_lan_network(FCGX_Request* request) {
  LanSettings settings;
  if (cmd_get_lan_netowrk(settings) != 0) {
    log_error("fail to get lan network config\n");
    return answer(request, answers::kFailed);
  }
  return answer(request, build_lan_document(settings, is_ap_or_repeater_mode() == 1));
}

// No content is answered with result 1. A body that is not JSON and an unreadable op_mode are answered with nothing.
int handle_set_lan_network(FCGX_Request* request, const char* body) {
  const json::Document document = parse_object(body, kBodyMessages);
  if (body == nullptr || *body == '\0') return answer(request, answers::kUnusable);
  if (!document) return 1;
  const std::optional<unit::OperatingMode> mode = unit::operating_mode();
  if (!mode) {
    log_error("Fail to get system.@system[0].op_mode value by uci api\n");
    return 1;
  }
  log_debug("workMode:%s\n", mode->text().c_str());
  return answer(request, apply_lan_network(document.root(), *mode));
}

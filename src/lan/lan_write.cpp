// Writing of the LAN settings.
#include <array>

#include "lan/lan_live.h"
#include "lan/lan_settings.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/operating_mode.h"

namespace {

constexpr const char* kSetter = "cmd_set_lan_network";

bool set_lan_option(const char* option, const std::string& value,
                    platform::LogPlace place = platform::LogPlace::here(kSetter)) {
  if (lan_section().set(option, value)) return true;
  log_error_at(place, "fail to set network.lan.%s by uci api\n", option);
  return false;
}

bool is_lan_dhcp_server_off() {
  constexpr std::size_t kIgnoreSize = 8;
  return uci::Section("dhcp", "lan").read_or("ignore", kIgnoreSize, "") == "1";
}

// Gateway and DNS of a unit that is a client of another router. False ends the change without a reload, and that is
// reported as success: kept as it is.
bool apply_gateway_and_dns(const LanSettings& settings) {
  if (!is_lan_dhcp_server_off()) {
    log_error_as(kSetter, "fail to set network.lan.gateway by uci api\n");
    return false;
  }
  if (!set_lan_option("gateway", settings.ipv4_gateway)) return false;
  if (set_lan_dns(settings.ipv4_dns1, settings.ipv4_dns2) == 0) return true;
  log_error_as(kSetter, "fail to set network.lan.dns by uci api\n");
  return false;
}

enum class StaticResult { kReload, kDoneWithoutReload, kFailed };

StaticResult apply_static(const LanSettings& settings, const unit::OperatingMode& mode) {
  if (!set_lan_option("ipaddr", settings.ipv4_address)) return StaticResult::kFailed;
  if (!set_lan_option("netmask", settings.ipv4_mask)) return StaticResult::kFailed;
  const bool has_gateway = !settings.ipv4_gateway.empty();
  const bool has_dns = !settings.ipv4_dns1.empty();
  if (has_gateway && has_dns && mode.is_client() && !apply_gateway_and_dns(settings)) {
    return StaticResult::kDoneWithoutReload;
  }
  if (!has_gateway) lan_section().remove("gateway");
  if (!has_dns) lan_section().remove("dns");
  return StaticResult::kReload;
}

}  // namespace

int remove_lan_static_config() {
  constexpr std::array<const char*, 4> kOptions{"ipaddr", "dns", "gateway", "netmask"};
  for (const char* option : kOptions) {
    if (!lan_section().remove(option)) log_error("fail to delete network.lan.%s by uci api\n", option);
  }
  return 0;
}

int set_lan_dns(const std::string& dns1, const std::string& dns2) {
  constexpr std::size_t kSlot = 16;
  if (dns1.empty()) {
    log_error(" First DNS can not be empty!\n");
    return 1;
  }
  const auto stored = lan_section().read_list("dns", kSlot, 2).value_or(std::vector<std::string>{});
  for (std::size_t index = 0; index < stored.size(); ++index) {
    if (!lan_section().remove_from_list("dns", stored[index])) {
      log_error(" fail to delete network.lan.dns[%d]  by UciDelList api\n", static_cast<int>(index));
      return 1;
    }
  }
  if (!lan_section().add_to_list("dns", dns1)) {
    log_error(" fail to set network.lan.dns to first dns by UciAddList api\n");
    return 1;
  }
  if (!dns2.empty() && !lan_section().add_to_list("dns", dns2)) {
    log_error(" fail to set network.lan.dns to second dns by UciAddList api\n");
    return 1;
  }
  os_system("rm /tmp/dnsmasq.d/ipv4_dns.conf");
  return 0;
}

int is_change_lan_setting(const std::string& address, const std::string& mask) {
  const std::optional<LanAddress> live = read_lan_address();
  if (!live) {
    log_error(" fial to get ipv4 addr and netsmask\n");
    return 0;
  }
  return live->address != address || live->mask != mask ? 1 : 0;
}

int cmd_set_lan_network(LanSettings& settings) {
  const std::optional<unit::OperatingMode> mode = unit::operating_mode();
  if (!mode) {
    log_error("Fail to get system.@system[0].op_mode value by uci api\n");
    return 1;
  }
  const bool is_router = mode->is_router();
  if (is_router) settings.dhcp_client = 0;

  if (!set_lan_option("globalIp", std::to_string(settings.global_ip_protection))) return 1;
  if (settings.dhcp_client != 0) remove_lan_static_config();
  if (!set_lan_option("proto", settings.dhcp_client != 0 ? "dhcp" : "static")) return 1;
  if (is_router && is_change_lan_setting(settings.ipv4_address, settings.ipv4_mask) == 0) return 0;

  if (settings.dhcp_client != 1) {
    const StaticResult result = apply_static(settings, *mode);
    if (result != StaticResult::kReload) return result == StaticResult::kFailed ? 1 : 0;
  }
  safe_execute_network_reload();
  return 0;
}

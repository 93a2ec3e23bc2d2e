// The LAN's side of the WAN's method.
#include "waninfoMethod/lan_bridge.h"

#include <array>
#include <initializer_list>
#include <string>
#include <string_view>

#include "domain/wan_modes.h"
#include "system_helpers.h"
#include "uci_access.h"
#include "waninfoMethod/wan_config.h"

namespace {

constexpr std::array<const char*, 3> kPorts{"eth0", "eth1", "eth2"};

struct LanDefaults {
  std::string_view device_id;
  const char* address;
  const char* first_client;
};

// The first row serves units whose id cannot be read or is unknown.
constexpr std::array<LanDefaults, 2> kLanDefaults{{
    {"0221", "192.168.0.1", "192.168.0.2"},
    {"0121", "192.168.2.1", "192.168.2.2"},
}};

struct OptionValue {
  const char* option;
  const char* value;
};

void set_lan(const char* option, const char* value) { UciSetOption(nullptr, "network", "lan", option, value); }

void set_bridge_ports(std::initializer_list<const char*> ports) {
  for (const char* port : kPorts) UciDelList(nullptr, "network", "@device[0]", "ports", port);
  for (const char* port : ports) UciAddList(nullptr, "network", "@device[0]", "ports", port);
}

const LanDefaults& brand_defaults() {
  std::array<char, 8> id{};
  if (getDeviceId(id.data(), id.size()) != 0) return kLanDefaults[0];
  for (const LanDefaults& row : kLanDefaults) {
    if (std::string_view(id.data()).starts_with(row.device_id)) return row;
  }
  return kLanDefaults[0];
}

// The address that the LAN had before it became a client, or else the brand's.
std::string lan_address() {
  std::string address = uci_read_or("network", "backlan", "ipaddr1", 16, "");
  if (!address.empty()) return address;
  const LanDefaults& defaults = brand_defaults();
  UciSetOption(nullptr, "network", "backlan", "start", defaults.first_client);
  return defaults.address;
}

void restore_lan() {
  set_lan("ifname", "eth0");
  set_lan("proto", "static");
  set_lan("ipaddr", lan_address().c_str());
  constexpr std::array<OptionValue, 4> kRest{
      {{"netmask", "255.255.255.0"}, {"ip6assign", "60"}, {"ieee1905managed", "1"}, {"force_link", "1"}}};
  for (const OptionValue& row : kRest) set_lan(row.option, row.value);
  UciSetOption(nullptr, "system", "@system[0]", "op_mode", "router");
  UciDelOption(nullptr, "dhcp", "lan", "ignore");
}

}  // namespace

void turn_lan_into_client() {
  for (const char* option : {"force_link", "ip6assign", "netmask", "ipaddr"}) {
    UciDelOption(nullptr, "network", "lan", option);
  }
  set_lan("proto", "dhcp");
  set_bridge_ports({"eth0", "eth1", "eth2"});
  set_lan("ieee1905managed", "1");
  set_lan("globalIp", "1");
  UciSetOption(nullptr, "dhcp", "lan", "ignore", "1");
}

void SetDhcpMode() {
  if (uci_read_or("network", "wan", "mode", kWanModeSize, "").starts_with("AP")) restore_lan();
  set_bridge_ports({"eth0", "eth2"});
}

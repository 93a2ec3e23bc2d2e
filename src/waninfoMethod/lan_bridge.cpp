// The LAN's side of the WAN's method.
#include "waninfoMethod/lan_bridge.h"

#include <array>
#include <initializer_list>
#include <string>
#include <string_view>

#include "domain/wan_modes.h"
#include "system_helpers.h"
#include "uci_section.h"
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

// A write that fails stops nothing: it is told in the log.
uci::Section lan() { return {"network", "lan"}; }

void set_bridge_ports(std::initializer_list<const char*> ports) {
  const uci::Section bridge("network", "@device[0]");
  for (const char* port : kPorts) bridge.remove_from_list("ports", port);
  for (const char* port : ports) bridge.add_to_list("ports", port);
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
  const uci::Section backup("network", "backlan");
  std::string address = backup.read_or("ipaddr1", 16, "");
  if (!address.empty()) return address;
  const LanDefaults& defaults = brand_defaults();
  backup.set("start", defaults.first_client);
  return defaults.address;
}

void restore_lan() {
  lan().set("ifname", "eth0");
  lan().set("proto", "static");
  lan().set("ipaddr", lan_address());
  constexpr std::array<OptionValue, 4> kRest{
      {{"netmask", "255.255.255.0"}, {"ip6assign", "60"}, {"ieee1905managed", "1"}, {"force_link", "1"}}};
  for (const OptionValue& row : kRest) lan().set(row.option, row.value);
  uci::Section("system", "@system[0]").set("op_mode", "router");
  uci::Section("dhcp", "lan").remove("ignore");
}

}  // namespace

void turn_lan_into_client() {
  for (const char* option : {"force_link", "ip6assign", "netmask", "ipaddr"}) lan().remove(option);
  lan().set("proto", "dhcp");
  set_bridge_ports({"eth0", "eth1", "eth2"});
  lan().set("ieee1905managed", "1");
  lan().set("globalIp", "1");
  uci::Section("dhcp", "lan").set("ignore", "1");
}

void SetDhcpMode() {
  if (uci::Section("network", "wan").read_or("mode", kWanModeSize, "").starts_with("AP")) restore_lan();
  set_bridge_ports({"eth0", "eth2"});
}

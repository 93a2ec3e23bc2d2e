// The LAN's side of the WAN's method.
#include "waninfoMethod/lan_bridge.h"

#include <array>
#include <initializer_list>
#include <string>

#include "uci_section.h"
#include "unit/brand.h"
#include "unit/operating_mode.h"
#include "waninfoMethod/wan_modes.h"

namespace {

constexpr std::array<const char*, 3> kPorts{"eth0", "eth1", "eth2"};

struct OptionValue {
  const char* option;
  const char* value;
};

void set_bridge_ports(std::initializer_list<const char*> ports) {
  const uci::Section bridge("network", "@device[0]");
  for (const char* port : kPorts) bridge.remove_from_list("ports", port);
  for (const char* port : ports) bridge.add_to_list("ports", port);
}

// The address that the LAN had before it became a client, or else the brand's.
std::string lan_address() {
  const uci::Section backup("network", "backlan");
  std::string address = backup.read_or("ipaddr1", 16, "");
  if (!address.empty()) return address;
  const brands::Brand* known = unit::brand_of_device_id();
  const brands::Brand& brand = known != nullptr ? *known : brands::of_index(kBrandOther);
  backup.set("start", brand.lan_first_client);
  return brand.lan_address;
}

// A write that fails stops nothing: it is told in the log. So below.
void restore_lan() {
  const uci::Section lan("network", "lan");
  lan.set("ifname", "eth0");
  lan.set("proto", "static");
  lan.set("ipaddr", lan_address());
  constexpr std::array<OptionValue, 4> kRest{
      {{"netmask", "255.255.255.0"}, {"ip6assign", "60"}, {"ieee1905managed", "1"}, {"force_link", "1"}}};
  for (const OptionValue& row : kRest) lan.set(row.option, row.value);
  unit::set_operating_mode(unit::kRouterMode);
  uci::Section("dhcp", "lan").remove("ignore");
}

}  // namespace

void turn_lan_into_client() {
  const uci::Section lan("network", "lan");
  for (const char* option : {"force_link", "ip6assign", "netmask", "ipaddr"}) lan.remove(option);
  lan.set("proto", "dhcp");
  set_bridge_ports({"eth0", "eth1", "eth2"});
  lan.set("ieee1905managed", "1");
  lan.set("globalIp", "1");
  uci::Section("dhcp", "lan").set("ignore", "1");
}

void SetDhcpMode() {
  if (uci::Section("network", "wan").read_or("mode", kWanModeSize, "").starts_with("AP")) restore_lan();
  set_bridge_ports({"eth0", "eth2"});
}

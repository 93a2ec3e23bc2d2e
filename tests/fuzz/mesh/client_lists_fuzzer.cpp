// Any bytes as the lists that clients are found in: the driver's, the kernel's ARP table, `arp -a`, `brctl showmacs`.
#include <algorithm>

#include "mesh/arp_table.h"
#include "mesh/client_sources.h"
#include "require.h"

namespace {

constexpr std::size_t kMacMax = 17;

void check(const ClientTable& table, std::size_t most) {
  fuzzing::require(table.rows().size() <= most, "the number of rows");
  for (const ClientRecord& row : table.rows()) {
    fuzzing::require(row.mac.size() <= kMacMax && row.rssi.size() <= 7 && row.ip.size() <= 15, "a row's texts");
    fuzzing::require(normalize_mac(row.mac) == row.mac, "a MAC that is written in two ways");
    fuzzing::require(table.find(row.mac) == &row, "a row that is not found by its MAC");
    fuzzing::require(row.connectionType >= -1 && row.connectionType <= 7, "a connection's type");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzzing::text_of(data, size);
  ClientTable wifi = parse_wifi_clients(text);
  const ClientTable arp = parse_arp_clients(text);
  check(wifi, 127);
  check(arp, size);
  for (const ClientRecord& row : arp.rows()) wifi.merge(row);
  check(wifi, 127 + arp.rows().size());

  const std::string_view mac = text.substr(0, std::min(text.find_first_of(" \n"), kMacMax));
  const auto ip = parse_arp_table(text, mac);
  fuzzing::require(!ip || (!ip->empty() && ip->size() <= 15), "an address's bound");
  get_port_by_mac(text, mac);
  fuzzing::require(get_network_subnet(text).ends_with(".0/24"), "a subnet");
  return 0;
}

// Any bytes as what ifconfig, ip and resolv.conf say of the LAN: every text keeps its bound.
#include "lan/ipv4.h"
#include "lan/lan_live.h"
#include "lan/lan_settings.h"
#include "require.h"

namespace {

constexpr std::size_t kIpv6TextMax = 63;

void check_servers(std::string_view text, bool ipv4, std::size_t most) {
  for (const std::string& server : parse_nameservers(text, ipv4, most)) {
    fuzzing::require(!server.empty() && server.size() <= most, "a name server's bound");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzzing::text_of(data, size);
  const LanAddress lan = parse_inet_line(text);
  fuzzing::require(lan.address.size() < kIpv4TextSize && check_ipv4_format(lan.address), "an address that is none");
  fuzzing::require(lan.mask.size() < kIpv4TextSize, "a mask's bound");
  for (const char* scope : {"Scope:Global", "Scope:Link", ""}) {
    fuzzing::require(parse_inet6(text, scope).size() <= kIpv6TextMax, "an IPv6 address's bound");
  }
  fuzzing::require(parse_default_gateway(text).size() <= kIpv6TextMax, "a gateway's bound");
  check_servers(text, true, kIpv4TextSize - 1);
  check_servers(text, false, kIpv6TextMax);
  return 0;
}

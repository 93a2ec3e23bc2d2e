// Any bytes as the address script's result file: every address keeps its bound, and a tunnel's stay.
#include "require.h"
#include "waninfoMethod/wan_addresses.h"

namespace {

constexpr std::size_t kIpv4Max = 15;
constexpr std::size_t kIpv6Max = 63;
constexpr std::size_t kGlobalMax = 71;

void check(const WanAddresses& addresses) {
  for (const auto& field : {addresses.ipv4_address, addresses.ipv4_mask, addresses.ipv4_gateway, addresses.ipv4_dns1,
                            addresses.ipv4_dns2}) {
    fuzzing::require(field.size() <= kIpv4Max, "an IPv4 address's bound");
  }
  for (const auto& field : {addresses.ipv6_local, addresses.ipv6_gateway, addresses.ipv6_dns1, addresses.ipv6_dns2}) {
    fuzzing::require(field.size() <= kIpv6Max, "an IPv6 address's bound");
  }
  fuzzing::require(addresses.ipv6_global.size() <= kGlobalMax, "the global address's bound");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzzing::text_of(data, size);
  WanAddresses addresses;
  read_address_lines(text, addresses);
  check(addresses);
  addresses.ipv4_address = "192.0.2.1";
  addresses.ipv6_global = "2001:db8::1/64";
  read_address_lines(text, addresses);
  check(addresses);
  fuzzing::require(addresses.ipv4_address == "192.0.2.1" && addresses.ipv6_global == "2001:db8::1/64",
                   "a tunnel's address was replaced");
  for (const std::size_t length : {std::size_t{0}, size / 2, size, size + 1})
    is_ipv4_address(std::string(text), length);
  return 0;
}

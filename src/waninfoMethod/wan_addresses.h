// The WAN's live addresses, as the address script finds them.
#pragma once

#include <string>
#include <string_view>

inline constexpr const char* kNoAddress = "None";

// Bounds: 15 bytes for an IPv4 text, 63 for an IPv6 one, 71 for the global IPv6 address with its prefix length.
struct WanAddresses {
  std::string ipv4_address = kNoAddress;
  std::string ipv4_mask = kNoAddress;
  std::string ipv4_gateway = kNoAddress;
  std::string ipv4_dns1 = kNoAddress;
  std::string ipv4_dns2 = kNoAddress;
  std::string ipv6_global = kNoAddress;
  std::string ipv6_local = kNoAddress;
  std::string ipv6_gateway = kNoAddress;
  std::string ipv6_dns1 = kNoAddress;
  std::string ipv6_dns2 = kNoAddress;
};

// Whether inet_pton takes the first `length` bytes of `text` (at most 63) for an IPv4 address.
bool is_ipv4_address(const std::string& text, std::size_t length);

// Fills `addresses` from what the script left in its result file. The two addresses that a tunnel may have set are only
// filled while they are "None". Lines are taken in pieces of 127 bytes, and the last byte of a piece is its line end.
void read_address_lines(std::string_view content, WanAddresses& addresses);

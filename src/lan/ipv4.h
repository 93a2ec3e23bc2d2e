// IPv4 addresses as texts and numbers: what the LAN's settings are checked by.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The checks below keep the results that their callers know: mind which of them answer 0 for "good".

// Four decimal fields of 0 to 255, three dots, no leading zero, nothing else.
bool check_ipv4_format(std::string_view text);

// First field highest; 0 for a malformed text.
std::uint32_t ipv4_to_uint(std::string_view text);

// `range` is "address/prefix" with a prefix of 1 to 32. Both ends of the range are outside, on purpose: its first and
// last address pass the checks that ask for it.
bool is_ip_in_cidr(std::string_view text, std::string_view range);

// 0 when `text` is a usable unicast address, 1 otherwise.
int is_valid_ip(std::string_view text);

// 0 for a mask of contiguous ones with at least one bit set, 1 otherwise. Looks at 31 characters, blanks dropped.
int is_invalid_netmask(std::string_view text);

// 1 when the host part of the address is all zeros or all ones.
int is_network_or_broadcast_ip(std::string_view address, std::string_view mask);

// 0 when the gateway lies in the address's subnet, 1 otherwise.
int check_ip_gateway_in_Subnet(std::string_view address, std::string_view gateway, std::string_view mask);

// What the running system says of br-lan: addresses, routes and name servers, parsed from the platform's tools.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Where the name servers stand that the upstream network told.
inline constexpr const char* kResolvConf = "/tmp/resolv.conf.auto";

struct LanAddress {
  std::string address;
  std::string mask;
};

// The line "inet addr:A  Bcast:B  Mask:M" (its last character, the line feed, is dropped). A malformed address gives
// "0.0.0.0", a missing mask "None".
LanAddress parse_inet_line(std::string_view line);
// The address of the first "inet6 addr:" line that holds `scope`, up to its "/"; "None" when there is none.
std::string parse_inet6(std::string_view ifconfig_output, std::string_view scope);
// The third blank-separated field of the first line that holds "default via"; "None" when there is none.
std::string parse_default_gateway(std::string_view routes);
// The "nameserver" addresses of a resolv.conf text, IPv4 ones or the others, at most `max_length` bytes each.
std::vector<std::string> parse_nameservers(std::string_view resolv_conf, bool ipv4, std::size_t max_length);

// nullopt when `ifconfig` could not be started.
std::optional<LanAddress> read_lan_address();

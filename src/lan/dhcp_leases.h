// Active DHCP leases.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct Lease {
  std::string ip;  // at most 31 bytes, as the MAC
  std::string mac;
  int remain_time = 0;  // seconds
};

// The leases of lines "EXPIRY,MAC,IP" that end after `now_s`; 0 is a lease without an end, which is not listed.
std::vector<Lease> parse_leases(std::string_view lines, long now_s);

// The system's uptime in seconds; the wall-clock time where that cannot be told; -1 where neither can.
long get_uptime_seconds();

// Active DHCP leases.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

// One lease, on loan from the line that it was read from.
struct Lease {
  std::string_view ip;  // at most 31 bytes, as the MAC
  std::string_view mac;
  int remain_time = 0;  // seconds
};

// Visits the leases of lines "EXPIRY,MAC,IP" that end after `now_s`, in their order; 0 is a lease without an end, which
// is left out.
void for_each_lease(std::string_view lines, std::int64_t now_s, const std::function<void(const Lease&)>& visit);

// The system's uptime in seconds; the wall-clock time where that cannot be told; -1 where neither can.
std::int64_t get_uptime_seconds();

// What the kernel tells of the machine: how long it runs, and the addresses of its interfaces.
#pragma once

#include <optional>
#include <string>

namespace platform {

// Seconds since the system started, suspended ones included; nullopt where the kernel does not tell.
std::optional<long> uptime_seconds();

// The first IPv4 address of the interface in dotted form; nullopt when it has none.
std::optional<std::string> ipv4_address_of(const char* ifname);

}  // namespace platform

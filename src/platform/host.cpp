// Uptime and interface addresses, from the kernel.
#include "platform/host.h"

#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <ifaddrs.h>
#include <memory>
#include <netinet/in.h>
#include <sys/sysinfo.h>

namespace platform {

std::optional<long> uptime_seconds() {
  struct sysinfo info {};
  return sysinfo(&info) == 0 ? std::optional(info.uptime) : std::nullopt;
}

std::optional<std::string> ipv4_address_of(const char* ifname) {
  ifaddrs* addresses = nullptr;
  if (getifaddrs(&addresses) != 0) return std::nullopt;
  const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> owner(addresses, freeifaddrs);
  for (const ifaddrs* entry = addresses; entry != nullptr; entry = entry->ifa_next) {
    if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET) continue;
    if (std::strcmp(entry->ifa_name, ifname) != 0) continue;
    std::array<char, INET_ADDRSTRLEN> text{};
    const auto* address = reinterpret_cast<const sockaddr_in*>(entry->ifa_addr);
    inet_ntop(AF_INET, &address->sin_addr, text.data(), text.size());
    return text.data();
  }
  return std::nullopt;
}

}  // namespace platform

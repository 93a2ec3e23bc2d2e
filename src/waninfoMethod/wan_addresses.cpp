// The address script's result file: "name:value" lines and resolv.conf's "nameserver value" lines.
#include "waninfoMethod/wan_addresses.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstddef>

#include "platform/text.h"

namespace {

constexpr std::size_t kLineSize = 128;
constexpr std::size_t kIpv4Size = 16;
constexpr std::size_t kIpv6Size = 64;
constexpr std::size_t kGlobalSize = 72;

struct AddressLine {
  std::string_view name;
  std::string WanAddresses::*field;
  std::size_t size;
  bool only_once;  // what is known already stays
};

constexpr std::array<AddressLine, 6> kAddressLines{{
    {"addr", &WanAddresses::ipv4_address, kIpv4Size, true},
    {"Mask", &WanAddresses::ipv4_mask, kIpv4Size, false},
    {"gatewayV4", &WanAddresses::ipv4_gateway, kIpv4Size, false},
    {"ipv6Global", &WanAddresses::ipv6_global, kGlobalSize, true},
    {"ipv6Link", &WanAddresses::ipv6_local, kIpv6Size, false},
    {"gatewayV6", &WanAddresses::ipv6_gateway, kIpv6Size, false},
}};

// What stands behind the first `separator`, without the last byte; false when there is no separator.
bool value_behind(std::string_view piece, std::string_view separator, std::string& value) {
  const std::optional<std::string_view> rest = platform::behind(piece, separator);
  if (!rest) return false;
  value = rest->substr(0, rest->empty() ? 0 : rest->size() - 1);
  return true;
}

// Name servers of both families, each counted for itself; the third and later ones are of no interest.
class NameServers {
 public:
  explicit NameServers(WanAddresses& addresses)
      : ipv4_{&addresses.ipv4_dns1, &addresses.ipv4_dns2}, ipv6_{&addresses.ipv6_dns1, &addresses.ipv6_dns2} {}

  void add(const std::string& value) {
    if (is_ipv4_address(value, value.size())) {
      fill(ipv4_, ipv4_count_, platform::cut_utf8(value, kIpv4Size - 1));
    } else {
      fill(ipv6_, ipv6_count_, platform::cut_utf8(value, kIpv6Size - 1));
    }
  }

 private:
  using Fields = std::array<std::string*, 2>;

  static void fill(const Fields& fields, std::size_t& count, std::string_view value) {
    if (count < fields.size()) *fields[count++] = value;
  }

  Fields ipv4_;
  Fields ipv6_;
  std::size_t ipv4_count_ = 0;
  std::size_t ipv6_count_ = 0;
};

void fill_address(const AddressLine& line, std::string_view piece, WanAddresses& addresses) {
  std::string& field = addresses.*(line.field);
  if (line.only_once && field != kNoAddress) return;
  std::string value;
  if (value_behind(piece, ":", value)) field = platform::cut_utf8(value, line.size - 1);
}

}  // namespace

bool is_ipv4_address(const std::string& text, std::size_t length) {
  constexpr std::size_t kBufferSize = 64;
  in_addr address{};
  return inet_pton(AF_INET, text.substr(0, std::min(length, kBufferSize - 1)).c_str(), &address) == 1;
}

void read_address_lines(std::string_view content, WanAddresses& addresses) {
  NameServers servers(addresses);
  while (!content.empty()) {
    const std::string_view piece = platform::take_line(content, kLineSize - 1);
    std::string value;
    if (piece.starts_with("nameserver")) {
      if (value_behind(piece, " ", value)) servers.add(value);
      continue;
    }
    const auto line = std::find_if(kAddressLines.begin(), kAddressLines.end(),
                                   [&](const AddressLine& row) { return piece.starts_with(row.name); });
    if (line != kAddressLines.end()) fill_address(*line, piece, addresses);
  }
}

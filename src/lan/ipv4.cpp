// IPv4 arithmetic.
#include "lan/ipv4.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <vector>

#include "platform/log.h"
#include "platform/text.h"

namespace {

constexpr std::size_t kMaskTextMax = 31;

std::vector<std::string_view> split_at_dots(std::string_view text) {
  std::vector<std::string_view> fields;
  while (true) {
    const std::size_t dot = text.find('.');
    fields.push_back(text.substr(0, dot));
    if (dot == std::string_view::npos) return fields;
    text.remove_prefix(dot + 1);
  }
}

// A field of an address: 0 to 255 without a leading zero.
std::optional<std::uint32_t> parse_field(std::string_view field) {
  if (!platform::is_digits(field) || field.size() > 3 || (field.size() > 1 && field.front() == '0'))
    return std::nullopt;
  std::uint32_t value = 0;
  std::from_chars(field.data(), field.data() + field.size(), value);
  if (value > 255) return std::nullopt;
  return value;
}

std::optional<std::uint32_t> parse_ipv4(std::string_view text) {
  const std::vector<std::string_view> fields = split_at_dots(text);
  if (fields.size() != 4) return std::nullopt;
  std::uint32_t address = 0;
  for (const std::string_view field : fields) {
    const std::optional<std::uint32_t> value = parse_field(field);
    if (!value) return std::nullopt;
    address = address << 8 | *value;
  }
  return address;
}

// A field of a mask as the mask check reads it: its leading digits, -1 for what begins otherwise.
int mask_field(std::string_view field) {
  if (field.empty() || !platform::is_digit(field[0]) || (field.size() > 1 && field[0] == '0')) return -1;
  int value = -1;
  std::from_chars(field.data(), field.data() + field.size(), value);
  return value;
}

}  // namespace

bool check_ipv4_format(std::string_view text) { return parse_ipv4(text).has_value(); }

std::uint32_t ipv4_to_uint(std::string_view text) { return parse_ipv4(text).value_or(0); }

bool is_ip_in_cidr(std::string_view text, std::string_view range) {
  const std::size_t slash = range.find('/');
  if (slash == std::string_view::npos) return false;
  const std::string_view prefix_text = range.substr(slash + 1);
  unsigned int prefix = 0;
  std::from_chars(prefix_text.data(), prefix_text.data() + prefix_text.size(), prefix);
  if (prefix < 1 || prefix > 32) return false;
  const std::uint64_t network = ipv4_to_uint(range.substr(0, slash));
  const std::uint64_t size = std::uint64_t{1} << (32 - prefix);
  const std::uint64_t address = ipv4_to_uint(text);
  return network < address && address < network + size - 1;
}

int is_valid_ip(std::string_view text) {
  if (text.empty()) return 1;
  if (!check_ipv4_format(text)) {
    log_error("Invalid format of ip \n");
    return 1;
  }
  if (text == "255.255.255.255" || text == "0.0.0.0") return 1;
  for (const char* range : {"240.0.0.0/4", "224.0.0.0/4", "127.0.0.0/8"}) {
    if (is_ip_in_cidr(text, range)) {
      log_error(" passed ip should not be in %s\n", range);
      return 1;
    }
  }
  return 0;
}

int is_invalid_netmask(std::string_view text) {
  constexpr std::array<int, 8> kLastNonZero{255, 254, 252, 248, 240, 224, 192, 128};
  std::string mask(text.substr(0, kMaskTextMax));
  std::erase(mask, ' ');
  const std::vector<std::string_view> fields = split_at_dots(mask);
  if (fields.size() != 4) return 1;
  bool ones_begun = false;
  for (auto field = fields.rbegin(); field != fields.rend(); ++field) {
    const int value = mask_field(*field);
    if (value < 0) return 1;
    if (ones_begun && value != 255) return 1;
    if (ones_begun || value == 0) continue;
    if (std::ranges::find(kLastNonZero, value) == kLastNonZero.end()) return 1;
    ones_begun = true;
  }
  return ones_begun ? 0 : 1;
}

int is_network_or_broadcast_ip(std::string_view address, std::string_view mask) {
  const std::uint32_t ip = ipv4_to_uint(address);
  const std::uint32_t bits = ipv4_to_uint(mask);
  if ((ip & bits) == ip) return 1;
  const int ones = std::popcount(bits);
  const std::uint32_t host_bits =
      ones == 0 ? ~std::uint32_t{0} : static_cast<std::uint32_t>((std::uint64_t{1} << (32 - ones)) - 1);
  return (ip & host_bits) == host_bits ? 1 : 0;
}

int check_ip_gateway_in_Subnet(std::string_view address, std::string_view gateway, std::string_view mask) {
  const std::array<std::string_view, 3> texts{address, gateway, mask};
  std::array<std::uint32_t, 3> numbers{};
  for (std::size_t index = 0; index < texts.size(); ++index) {
    const std::optional<std::uint32_t> number = parse_ipv4(texts[index]);
    if (!number) {
      log_error(" fail to convert %s to integer number.\n", std::string(texts[index]).c_str());
      return 1;
    }
    numbers[index] = *number;
  }
  if ((numbers[2] & (numbers[0] ^ numbers[1])) == 0) return 0;
  log_error("#Unreasonable IP and gateway addresses\nip:%s,vai:%s and mask:%s\n", std::string(address).c_str(),
            std::string(gateway).c_str(), std::string(mask).c_str());
  return 1;
}

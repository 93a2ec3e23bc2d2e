// Merging of client rows.
#include "mesh/client_table.h"

#include "mesh/topology.h"
#include "platform/text.h"

namespace {

constexpr std::size_t kMacDigits = 12;

// The hexadecimal digits of a MAC text, in upper case, at most `most`.
std::string digits_of(std::string_view text, std::size_t most) {
  std::string digits;
  for (const char character : text) {
    if (platform::is_hex_digit(character) && digits.size() < most) digits += character;
  }
  return platform::upper_case(digits);
}

void update(ClientRecord& row, const ClientRecord& record) {
  if (record.fromTopology) {
    row = record;
  } else if (record.fromWifi && !row.fromTopology) {
    row.connectionType = record.connectionType;
    row.isWireless = true;
    row.fromWifi = true;
  } else if (record.fromArp && !row.fromTopology && !row.fromWifi) {
    row.connectionType = record.connectionType;
    row.fromArp = true;
  }
}

}  // namespace

std::string normalize_mac(std::string_view text) {
  const std::string digits = digits_of(text, kMacDigits + 1);
  if (digits.size() != kMacDigits) return std::string(text.substr(0, kMacLength));
  std::string mac;
  for (std::size_t digit = 0; digit < kMacDigits; ++digit) {
    if (digit != 0 && digit % 2 == 0) mac += ':';
    mac += digits[digit];
  }
  return mac;
}

std::uint64_t mac_key(std::string_view text) {
  constexpr int kBitsOfAll = 4 * kMacDigits;
  std::uint64_t digits = 0;
  std::uint64_t count = 0;
  for (const char character : text) {
    const std::optional<unsigned> digit = platform::hex_value(character);
    if (!digit || count == kMacDigits) continue;
    digits = digits << 4U | *digit;
    ++count;
  }
  return count << kBitsOfAll | digits;
}

bool mac_equal(std::string_view left, std::string_view right) { return mac_key(left) == mac_key(right); }

void ClientTable::merge(const ClientRecord& record) {
  const auto [known, is_new] = positions_.try_emplace(mac_key(record.mac), rows_.size());
  if (is_new) {
    rows_.push_back(record);
  } else {
    update(rows_[known->second], record);
  }
}

ClientRecord* ClientTable::find(std::string_view mac) {
  const auto known = positions_.find(mac_key(mac));
  return known == positions_.end() ? nullptr : &rows_[known->second];
}

const ClientRecord* ClientTable::find(std::string_view mac) const {
  const auto known = positions_.find(mac_key(mac));
  return known == positions_.end() ? nullptr : &rows_[known->second];
}

void client_table_merge(ClientTable& table, const ClientRecord& record) { table.merge(record); }
ClientRecord* client_table_find(ClientTable& table, std::string_view mac) { return table.find(mac); }

// The merged table of clients, keyed by MAC address.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/short_text.h"

struct ClientRecord {
  platform::ShortText<17> mac;  // as normalize_mac writes it
  platform::ShortText<15> ip;
  platform::ShortText<7> rssi;  // as the driver reports it
  int connectionType = 0;       // 0 wired, 1 2.4, 2 5, 3 6, 4 2.4+5, 5 5+6, 6 2.4+5+6, 7 2.4+6 GHz
  bool isWireless = false;
  bool isMeshDevice = false;  // a mesh unit, never listed
  int agentIndex = -1;        // number of the satellite that it hangs behind, -1 for the router itself
  bool fromArp = false;
  bool fromWifi = false;
  bool fromTopology = false;
};

// Upper case with colons when the text holds exactly twelve hexadecimal digits, else the text itself (17 bytes).
std::string normalize_mac(std::string_view text);

// What tells one MAC from another: its hexadecimal digits, twelve at most, and how many there are.
std::uint64_t mac_key(std::string_view text);

// The hexadecimal digits of both, twelve at most, are the same in any case and number.
bool mac_equal(std::string_view left, std::string_view right);

// Rows in the order of their arrival.
class ClientTable {
 public:
  // Adds the row, or updates the one of its MAC: topology ranks over Wi-Fi over ARP.
  void merge(const ClientRecord& record);
  ClientRecord* find(std::string_view mac);
  [[nodiscard]] const ClientRecord* find(std::string_view mac) const;
  std::deque<ClientRecord>& rows() { return rows_; }
  [[nodiscard]] const std::deque<ClientRecord>& rows() const { return rows_; }

 private:
  std::deque<ClientRecord> rows_;                             // a long table grows without a copy of itself
  std::unordered_map<std::uint64_t, std::size_t> positions_;  // by mac_key
};

void client_table_merge(ClientTable& table, const ClientRecord& record);
ClientRecord* client_table_find(ClientTable& table, std::string_view mac);

// How devices and stations are connected, told from the tables of a dump.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "mesh/dump_index.h"

class BackhaulReader {
 public:
  // `mesh_mode` is asked when the tables tell nothing.
  BackhaulReader(const DumpIndex& index, std::function<int()> mesh_mode);

  // From the device's own table of direct remote connections.
  std::string get_backhaul_type_from_remote(std::string_view device_mac);

  // From the owner's table of bridged addresses. `interface_mac` gets the MAC of the first owner's interface that the
  // target was seen on; empty when there is none.
  std::string get_backhaul_type_via_bridge(std::string_view owner_mac, std::string_view target_mac,
                                           std::string* interface_mac = nullptr);

 private:
  // A row that holds a text, and the index of its interface.
  struct BridgeRow {
    std::size_t line;
    int index;
  };
  struct BridgeTable {
    std::vector<std::uint32_t> lines;  // of its rows, ordered by their first words
    std::unordered_map<std::string, std::vector<BridgeRow>> by_other_word;
  };
  // The media of the remote table whose rows begin at the line. Tables may share their rows: a dump need not end one
  // before the next begins.
  unsigned int remote_media(std::size_t line);
  const BridgeTable& bridge_table(std::size_t heading);
  BridgeTable read_bridge_table(std::size_t heading) const;
  void sort_by_first_word(std::vector<std::uint32_t>& numbers) const;
  // The first indices that stand beside the text in the table.
  [[nodiscard]] std::vector<int> indices_of(const BridgeTable& table, std::string_view text) const;
  const char* type_of_mesh_mode();

  const DumpIndex& index_;
  std::function<int()> mesh_mode_;
  std::optional<int> known_mesh_mode_;
  std::vector<unsigned char> remote_media_;                     // from each line to the end of its table
  std::unordered_map<std::size_t, BridgeTable> bridge_tables_;  // by the line of their heading
};

// The connection type code of the client list and the agent list; 5 for any text without one.
int connection_type_code(std::string_view connection_type);

// How devices and stations are connected, told from the tables of a dump.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "mesh/dump_index.h"

class BackhaulReader {
 public:
  // `mesh_mode` is asked when the tables tell nothing.
  BackhaulReader(const DumpIndex& index, std::function<int()> mesh_mode);

  // From the device's own table of direct remote connections.
  std::string get_backhaul_type_from_remote(const std::string& device_mac);

  // From the owner's table of bridged addresses. `interface_mac` gets the MAC of the first owner's interface that the
  // target was seen on; empty when there is none.
  std::string get_backhaul_type_via_bridge(const std::string& owner_mac, const std::string& target_mac,
                                           std::string* interface_mac = nullptr);

 private:
  using IndicesOfMac = std::unordered_map<std::string, std::vector<int>>;
  // The media of the remote table whose rows begin at the line. Tables may share their rows: a dump need not end one
  // before the next begins.
  unsigned int remote_media(std::size_t line);
  const IndicesOfMac& bridge_rows(std::size_t heading);
  const char* type_of_mesh_mode();

  const DumpIndex& index_;
  std::function<int()> mesh_mode_;
  std::optional<int> known_mesh_mode_;
  std::vector<unsigned char> remote_media_;                    // from each line to the end of its table
  std::unordered_map<std::size_t, IndicesOfMac> bridge_rows_;  // of a table, by the line of its heading
};

// The connection type code of the client list and the agent list; 5 for any text without one.
int connection_type_code(std::string_view connection_type);

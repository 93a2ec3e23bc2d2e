// Dumps for tests: whole ones from files, and small ones from pieces.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mesh/topology.h"
#include "platform/file.h"

namespace dumps {

inline std::string fixture(const std::string& name) {
  const auto text = platform::read_file((std::string(UNIT_FIXTURES) + "/" + name + ".txt").c_str());
  EXPECT_TRUE(text) << name;
  return text.value_or("");
}

inline TopologyInfo parse(const std::string& dump, int mesh_mode = 2) {
  return parse_topology(dump, {.ip_of_mac = [](const std::string&) { return std::nullopt; },
                               .mesh_mode = [mesh_mode] { return mesh_mode; }});
}

inline const std::string kRoot = "AA:AA:AA:AA:AA:00";
inline const std::string kAgent = "AA:AA:AA:AA:AA:01";
inline const std::string kOtherAgent = "AA:AA:AA:AA:AA:02";

inline std::string header(const std::string& mac, const std::string& upstream) {
  return "QCA IEEE 1905.1 device: " + mac + ", IPv4 address: 10.0.0.1\n  Upstream Device: " + upstream + "\n";
}

inline std::string interfaces(const std::string& rows) { return "Index Medium Type\n" + rows + "\n"; }

inline std::string bridged(const std::string& rows) {
  return " 1 Bridged addresses:\n Address  Index  Interface Type\n" + rows + "\n\nRadios:\n";
}

inline std::string remote(const std::string& rows) {
  return "Remote connections (Directly connected to self)\nInterface name   Medium Type  MAC Address  MID\n" + rows +
         "\n";
}

// A controller and one agent with these interfaces and bridged rows.
inline std::string agent_with(const std::string& interface_rows, const std::string& bridged_rows) {
  return header(kRoot, "None") + header(kAgent, kRoot) + interfaces(interface_rows) + bridged(bridged_rows);
}

// "MAC type level; " of each, of the MAC its last two octets.
inline std::string stations_of(const TopologyDevice& device) {
  std::string text;
  for (const TopologyStation& station : device.stations) {
    const std::string_view mac = station.mac;
    text += std::string(mac.substr(std::min<std::size_t>(12, mac.size()))) + " " + station.connectionType.c_str() +
            " " + std::to_string(station.level) + "; ";
  }
  return text;
}

}  // namespace dumps

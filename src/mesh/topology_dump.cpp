// Asking the mesh daemon for its dump, and the system for what the dump leaves out.
#include <algorithm>
#include <array>
#include <cctype>
#include <memory>

#include "mesh/topology.h"
#include "mesh_codes.h"
#include "platform/process.h"
#include "uci_access.h"

namespace {

struct DumpCommand {
  std::string_view op_mode;
  const char* command;
};
// The pauses keep the console's input open until the daemon has printed its dump.
constexpr std::array<DumpCommand, 2> kDumpCommands{{
    {"ap", R"((sleep 5; echo "td s2"; sleep 5; ) | emt)"},
    {"re", R"((echo "td s"; sleep 1; ) | emt)"},
}};
constexpr const char* kRouterDumpCommand = R"((echo "td s2"; sleep 3; ) | emt)";

char lower(char character) { return static_cast<char>(std::tolower(static_cast<unsigned char>(character))); }

bool holds_in_any_case(std::string_view line, std::string_view text) {
  const auto same = [](char a, char b) { return lower(a) == lower(b); };
  return std::search(line.begin(), line.end(), text.begin(), text.end(), same) != line.end();
}

std::string_view second_field(std::string_view line) {
  constexpr std::string_view kBlanks = " \t";
  for (int field = 0;; ++field) {
    line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    const std::size_t end = std::min(line.find_first_of(kBlanks), line.size());
    if (field == 1 || line.empty()) return line.substr(0, end);
    line.remove_prefix(end);
  }
}

}  // namespace

std::optional<std::string> get_topology_dump() {
  constexpr std::size_t kOpModeSize = 16;
  const std::optional<std::string> op_mode = uci_read("system", "@system[0]", "op_mode", kOpModeSize);
  if (!op_mode) return std::nullopt;
  const auto* row = std::ranges::find(kDumpCommands, *op_mode, &DumpCommand::op_mode);
  platform::ProcessResult result = platform::run_shell(row == kDumpCommands.end() ? kRouterDumpCommand : row->command);
  if (result.output.empty()) return std::nullopt;
  return std::move(result.output);
}

std::optional<std::string> parse_arp_table(std::string_view table, std::string_view mac) {
  for (const std::string& line : platform::split_lines(table)) {
    if (mac.empty() || !holds_in_any_case(line, mac)) continue;
    std::string ip(second_field(line));
    std::erase_if(ip, [](char character) { return character == '(' || character == ')' || character == '\r'; });
    return ip.empty() ? std::nullopt : std::optional(ip.substr(0, kIpv4Length));
  }
  return std::nullopt;
}

int arp_lookup_ip(std::string_view mac, std::string& ip) {
  const std::optional<std::string> found = parse_arp_table(platform::run_shell("arp -a").output, mac);
  if (!found) return 1;
  ip = *found;
  return 0;
}

TopologyInfo parse_topology(std::string_view dump) {
  // One reading of the ARP table serves all devices whose header has no address.
  std::optional<std::string> arp_table;
  const TopologySources sources{
      .ip_of_mac =
          [&arp_table](const std::string& mac) {
            if (!arp_table) arp_table = platform::run_shell("arp -a").output;
            return parse_arp_table(*arp_table, mac);
          },
      .mesh_mode =
          [] {
            int mode = -1;
            get_mesh_mode_value(mode);
            return mode;
          },
  };
  return parse_topology(dump, sources);
}

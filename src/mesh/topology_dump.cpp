// Asking the mesh daemon for its dump, and the system for what the dump leaves out.
#include <algorithm>
#include <array>
#include <utility>

#include "mesh/arp_table.h"
#include "mesh/topology.h"
#include "platform/output_lines.h"
#include "platform/process.h"
#include "unit/mesh.h"
#include "unit/operating_mode.h"

namespace {

struct DumpCommand {
  std::string_view mode;
  const char* command;
};
// The pauses keep the console's input open until the daemon has printed its dump.
constexpr std::array<DumpCommand, 2> kDumpCommands{{
    {unit::kAccessPointMode, R"((sleep 5; echo "td s2"; sleep 5; ) | emt)"},
    {unit::kRepeaterMode, R"((echo "td s"; sleep 1; ) | emt)"},
}};
constexpr const char* kRouterDumpCommand = R"((echo "td s2"; sleep 3; ) | emt)";

}  // namespace

std::optional<DumpLines> get_topology_dump() {
  const std::optional<unit::OperatingMode> mode = unit::operating_mode();
  if (!mode) return std::nullopt;
  const auto* row = std::ranges::find(kDumpCommands, mode->text(), &DumpCommand::mode);
  DumpLines dump;
  platform::OutputLines lines(kDumpLineMax, [&dump](const std::string& line) { dump.add(line); });
  const auto add = [&lines](std::string_view piece) { return lines.add(piece); };
  const platform::ProcessResult result =
      platform::run_shell(row == kDumpCommands.end() ? kRouterDumpCommand : row->command, {.reader = add});
  lines.finish();
  if (result.too_late || dump.empty()) return std::nullopt;
  return dump;
}

int arp_lookup_ip(std::string_view mac, std::string& ip) {
  const std::optional<std::string> found = parse_arp_table(platform::run_shell("arp -a").output, mac);
  if (!found) return 1;
  ip = *found;
  return 0;
}

TopologyInfo parse_topology(DumpLines dump) {
  // One reading of the ARP table serves all devices whose header has no address.
  std::optional<ArpTable> arp_table;
  const TopologySources sources{
      .ip_of_mac =
          [&arp_table](const std::string& mac) {
            if (!arp_table) arp_table.emplace(platform::run_shell("arp -a").output);
            return arp_table->ip_of(mac);
          },
      .mesh_mode =
          [] {
            int mode = -1;
            get_mesh_mode_value(mode);
            return mode;
          },
  };
  return parse_topology(std::move(dump), sources);
}

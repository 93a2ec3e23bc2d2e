// The topology log and the console.
#include "mesh/topology_log.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "answer/json_text.h"
#include "platform/file.h"

namespace {

constexpr const char* kLogPath = "/tmp/topology.log";
constexpr std::size_t kTextSize = 1024;
constexpr std::size_t kLogSize = 20480;
constexpr std::size_t kLogReserve = 5120;
constexpr int kIndent = 4;

void empty_full_log() {
  const std::size_t size = platform::file_size(kLogPath).value_or(0);
  if (size + kLogReserve <= kLogSize) return;
  platform::create_private_file(kLogPath);
  console_print("[TOPO_LOG] Log file full (%.1fKB), truncated to empty\n", static_cast<double>(size) / 1024);
}

void append_to_log(const char* text) {
  const platform::UniqueFd file = platform::append_private_file(kLogPath);
  if (!file.valid()) {
    console_print("[TOPO_LOG] Failed to open log file: %s\n", kLogPath);
    return;
  }
  platform::write_whole(file.get(), text);
}

void tell_of_long_text(std::size_t bytes) {
  console_print("[TOPO_LOG] Content too long (need %zu bytes, buffer 1KB), skip write to file!\n", bytes);
}

void print_device(const TopologyInfo& info, const TopologyDevice& device, int indent) {
  const bool is_root = &device == info.root_device();
  topo_log("%*s%sMAC: %s, IP: %s, Connection: %s\n", indent, "",
           is_root ? "Device: " : "├─ Child Device: ", device.mac.c_str(), device.ip.c_str(),
           device.connectionType.c_str());
  if (!device.stations.empty()) topo_log("%*sStations Info:\n", indent + kIndent, "");
  for (const TopologyStation& station : device.stations) {
    topo_log("%*s- MAC: %s, Connection Type: %s\n", indent + 2 * kIndent, "", station.mac.c_str(),
             station.connectionType.c_str());
  }
  if (!device.children.empty()) topo_log("%*sSub-devices:\n", indent + kIndent, "");
}

}  // namespace

void topo_log(const char* format, ...) {
  std::array<char, kTextSize> text{};
  va_list arguments;
  va_start(arguments, format);
  const int needed = std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  if (needed < 0) return;
  if (static_cast<std::size_t>(needed) >= kTextSize) {
    tell_of_long_text(static_cast<std::size_t>(needed));
    return;
  }
  empty_full_log();
  append_to_log(text.data());
}

// Of a long document only the length is needed.
void topo_log_document(const char* name, std::string_view json) {
  const std::size_t size = std::strlen(name) + std::strlen(" = \n") + json::pretty_size(json);
  if (size >= kTextSize) {
    tell_of_long_text(size);
  } else {
    topo_log("%s = %s\n", name, json::pretty(json).c_str());
  }
}

void print_topology(const TopologyInfo& info) {
  topo_log("==================== Topology Info ====================\n");
  topo_log("Has Agent: %s\n", info.hasAgent ? "Yes" : "No");
  topo_log("\n[Main Router]\n");
  struct Step {
    std::size_t device;
    int indent;
  };
  std::vector<Step> waiting;
  if (info.root) waiting.push_back({*info.root, kIndent});
  while (!waiting.empty()) {
    const Step step = waiting.back();
    waiting.pop_back();
    const TopologyDevice& device = info.devices[step.device];
    print_device(info, device, step.indent);
    for (auto child = device.children.rbegin(); child != device.children.rend(); ++child) {
      waiting.push_back({*child, step.indent + 2 * kIndent});
    }
  }
  topo_log("=======================================================\n");
}

// The tunnel-status tool's report: "marker: value" lines, found by their markers wherever these stand in the line.
#include "waninfoMethod/tunnel_status.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/log.h"
#include "platform/process.h"
#include "platform/text.h"

Ip4orip6Info g_ip4orip6Info;

namespace {

constexpr std::size_t kLineSize = 128;

struct Marker {
  std::string_view text;
  std::string Ip4orip6Info::*field;
  std::size_t size;
  const char* name;
};

// In the order in which a line is searched for them.
constexpr std::array<Marker, 7> kMarkers{{
    {"MAP-E/DS-Lite/IPIP6 mode: ", &Ip4orip6Info::mode, 32, "mode"},
    {"VNE Service: ", &Ip4orip6Info::vne_service, 128, "vne_service"},
    {"CE: ", &Ip4orip6Info::CE, 64, "CE"},
    {"IPv4: ", &Ip4orip6Info::ipv4, 16, "ipv4"},
    {"Port: ", &Ip4orip6Info::port, 1024, "port"},
    {"WAN global address: ", &Ip4orip6Info::wan_global_addr, 64, "wan_global_addr"},
    {"AFTR: ", &Ip4orip6Info::aftr, 256, "aftr"},
}};

bool is_list_of_ports(const Marker& marker) { return marker.field == &Ip4orip6Info::port; }

const Marker* find_marker(std::string_view line) {
  const auto row =
      std::find_if(kMarkers.begin(), kMarkers.end(), [&](const Marker& m) { return platform::holds(line, m.text); });
  return row == kMarkers.end() ? nullptr : &*row;
}

bool ends_list_of_ports(std::string_view line) {
  return std::any_of(kMarkers.begin(), kMarkers.end(),
                     [&](const Marker& m) { return !is_list_of_ports(m) && platform::holds(line, m.text); });
}

void append_bounded(std::string& field, std::string_view text, std::size_t size) {
  field += platform::cut_utf8(text, size - 1 - field.size());
}

}  // namespace

Ip4orip6Info parse_tunnel_status(std::string_view output) {
  Ip4orip6Info info;
  const std::vector<std::string> lines = platform::split_lines(output, kLineSize);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const Marker* marker = find_marker(lines[i]);
    if (marker == nullptr) continue;
    std::string& field = info.*(marker->field);
    field = platform::cut_utf8(platform::behind(lines[i], marker->text).value_or(""), marker->size - 1);
    if (is_list_of_ports(*marker)) {
      for (++i; i < lines.size() && !ends_list_of_ports(lines[i]); ++i) append_bounded(field, lines[i], marker->size);
    }
    log_debug_as("Ip4ov6jp_InfoCmd", "g_ip4orip6Info.%s is [%s]", marker->name, field.c_str());
  }
  return info;
}

int Ip4ov6jp_InfoCmd() {
  g_ip4orip6Info = {};
  const platform::ProcessResult tool = platform::run_shell("/usr/sbin/ip4ov6jp_info");
  if (!tool.started) {
    log_error("popen ip4ov6jp_info fail.");
    return 1;
  }
  g_ip4orip6Info = parse_tunnel_status(tool.output);
  return 0;
}

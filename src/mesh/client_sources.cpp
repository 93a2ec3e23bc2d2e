// Parsers of the sources and the commands that fill them.
#include "mesh/client_sources.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include "mesh/dump_index.h"
#include "platform/background.h"
#include "platform/file.h"
#include "platform/host.h"
#include "platform/line_reader.h"
#include "platform/log.h"
#include "platform/output_lines.h"
#include "platform/process.h"
#include "platform/text.h"
#include "system_helpers.h"

namespace {

constexpr std::size_t kMostWifiClients = 127;
constexpr std::size_t kWifiLineSize = 64;
constexpr std::size_t kTableLineMax = 1023;  // a line of the kernel's tables has 80
constexpr const char* kWifiListPath = "/tmp/clientList.txt";

// By the mask of the bands: 1 2.4 GHz, 2 5 GHz, 4 6 GHz, 8 wired.
constexpr std::array<int, 9> kTypeOfBandMask{-1, 1, 2, 4, 3, 7, 5, 6, 0};

struct WifiClient {
  std::string mac;
  std::string rssi;
  std::string operating_band;
  std::string mlo;
  std::string mld_addr;
};

std::string value_behind(std::string_view line, std::string_view mark, std::size_t most) {
  return std::string(platform::behind(line, mark).value_or("").substr(0, most));
}

// False when the list is full: what follows belongs to a client that has no place in it.
bool read_wifi_line(std::string_view line, std::vector<WifiClient>& clients) {
  if (platform::holds(line, "mac_rssi")) {
    if (clients.size() == kMostWifiClients) return false;
    clients.push_back({value_behind(line, ":", 17), value_behind(line, " ", 7), "", "", ""});
    return true;
  }
  if (clients.empty()) return true;
  WifiClient& client = clients.back();
  if (platform::holds(line, "operating_band")) {
    client.operating_band = value_behind(line, ":", 63);
  } else if (platform::holds(line, "mlo")) {
    client.mlo = value_behind(line, ":", 3);
  } else if (platform::holds(line, "mld_addr")) {
    client.mld_addr = value_behind(line, ":", 17);
  }
  return true;
}

int type_of_bands(std::string_view bands) {
  std::size_t mask = 0;
  if (platform::holds(bands, "2.4GHz")) mask += 1;
  if (platform::holds(bands, "5GHz")) mask += 2;
  if (platform::holds(bands, "6GHz")) mask += 4;
  if (platform::holds(bands, "ETHER") || platform::holds(bands, "eth0")) mask = 8;
  return kTypeOfBandMask[mask];
}

ClientRecord record_of(const WifiClient& client) {
  ClientRecord record;
  record.mac = normalize_mac(client.mlo.starts_with("Yes") ? client.mld_addr : client.mac);
  record.rssi = client.rssi;
  record.connectionType = type_of_bands(client.operating_band);
  record.isWireless = true;
  record.fromWifi = true;
  return record;
}

// A complete row of br-lan; nullopt for any other line.
std::optional<ClientRecord> read_arp_row(const std::string& line) {
  constexpr unsigned int kComplete = 0x2;
  std::array<char, 16> ip{};
  std::array<char, 16> type{};
  std::array<char, 16> flags{};
  std::array<char, 18> mac{};
  std::array<char, 16> mask{};
  std::array<char, 16> device{};
  if (std::sscanf(line.c_str(), "%15s %15s %15s %17s %15s %15s", ip.data(), type.data(), flags.data(), mac.data(),
                  mask.data(), device.data()) != 6) {
    return std::nullopt;
  }
  unsigned int bits = 0;
  const bool complete = std::sscanf(flags.data(), "0x%8x", &bits) == 1 && (bits & kComplete) != 0;
  if (!complete || std::strcmp(device.data(), "br-lan") != 0) return std::nullopt;
  if (std::strcmp(mac.data(), "00:00:00:00:00:00") == 0) return std::nullopt;
  ClientRecord record;
  record.mac = normalize_mac(mac.data());
  record.ip = ip.data();
  record.fromArp = true;
  return record;
}

// Collects the rows of the table, behind its heading.
class ArpRows {
 public:
  void add(const std::string& line) {
    if (std::exchange(is_heading_, false)) return;
    if (const std::optional<ClientRecord> record = read_arp_row(line)) table_.merge(*record);
  }
  ClientTable table() && { return std::move(table_); }

 private:
  ClientTable table_;
  bool is_heading_ = true;
};

}  // namespace

std::string get_network_subnet(std::string_view ip) {
  std::array<int, 4> parts{};
  const std::string text(ip);
  if (std::sscanf(text.c_str(), "%3d.%3d.%3d.%3d", &parts[0], &parts[1], &parts[2], &parts[3]) != 4) {
    log_error("Error in parsing the network_sunnet,ip[%s]", text.c_str());
    return "192.168.0.0/24";
  }
  return std::to_string(parts[0]) + "." + std::to_string(parts[1]) + "." + std::to_string(parts[2]) + ".0/24";
}

void refresh_arp() {
  constexpr unsigned int kScanTime = 2;
  os_system("echo 1 > /proc/sys/net/ipv4/conf/br-lan/arp_accept");
  os_system("ip -4 neigh flush dev br-lan");
  const std::optional<std::string> address = platform::ipv4_address_of("br-lan");
  if (!address) return;
  // The subnet is made of four numbers of the kernel's.
  os_system("arp-scan -I br-lan --quiet " + get_network_subnet(*address) + " >/dev/null 2>&1");
  platform::sleep_seconds(kScanTime);
}

ClientTable parse_arp_clients(std::string_view proc_net_arp) {
  ArpRows rows;
  platform::for_each_line(proc_net_arp, 0, [&rows](const std::string& line) { rows.add(line); });
  return std::move(rows).table();
}

ClientTable collect_arp_clients() {
  platform::LineReader lines(platform::open_file("/proc/net/arp", "r"), kTableLineMax);
  ArpRows rows;
  for (std::string line; lines.next(line);) rows.add(line);
  return std::move(rows).table();
}

ClientTable parse_wifi_clients(std::string_view client_list) {
  std::vector<WifiClient> clients;
  for (const std::string& line : platform::split_lines(client_list, kWifiLineSize)) {
    if (!read_wifi_line(without_line_end(line), clients)) break;
  }
  ClientTable table;
  for (const WifiClient& client : clients) table.merge(record_of(client));
  return table;
}

ClientTable collect_wifi_clients() {
  os_system("/etc/wireClient.sh");
  return parse_wifi_clients(platform::read_file(kWifiListPath).value_or(""));
}

std::optional<int> get_interface_port(const char* ifname) {
  const std::string path = std::string("/sys/class/net/br-lan/brif/") + ifname + "/port_no";
  const std::optional<std::string> text = platform::read_file(path.c_str(), 32);
  if (!text || text->empty()) return std::nullopt;
  const bool is_hexadecimal = text->starts_with("0x") || text->starts_with("0X");
  const int port = static_cast<int>(std::strtol(text->c_str(), nullptr, is_hexadecimal ? 16 : 10));
  log_debug("Interface %s port from file: %s -> %d", ifname, std::string(without_line_end(*text)).c_str(), port);
  return port;
}

void BridgePorts::add(const std::string& line) {
  if (std::exchange(is_heading_, false)) return;
  int port = 0;
  std::array<char, 18> learned{};
  if (std::sscanf(line.c_str(), "%9d %17s", &port, learned.data()) == 2) {
    ports_.try_emplace(mac_key(learned.data()), port);
  }
}

std::optional<int> BridgePorts::of(std::string_view mac) const {
  const auto known = ports_.find(mac_key(mac));
  return known == ports_.end() ? std::nullopt : std::optional(known->second);
}

std::optional<int> get_port_by_mac(std::string_view showmacs, std::string_view mac) {
  BridgePorts ports;
  platform::for_each_line(showmacs, 0, [&ports](const std::string& line) { ports.add(line); });
  return ports.of(mac);
}

void WiredPorts::read() {
  read_ = true;
  eth0_ = get_interface_port("eth0");
  eth2_ = get_interface_port("eth2");
  platform::OutputLines lines(kTableLineMax, [this](const std::string& line) { ports_.add(line); });
  const auto add = [&lines](std::string_view piece) { return lines.add(piece); };
  const platform::ProcessResult result = platform::run_shell("brctl showmacs br-lan", {.reader = add});
  lines.finish();
  if (result.too_late) ports_ = {};
}

bool WiredPorts::is_wired_device(std::string_view mac) {
  if (!read_) read();
  if (!eth0_) log_error("Failed to get eth0 port");
  if (eth0_ && !eth2_) log_error("Failed to get eth2 port");
  if (!eth0_ || !eth2_) return false;
  const std::optional<int> port = ports_.of(mac);
  if (!port) log_error("Target MAC %s not found in bridge", std::string(mac).c_str());
  return port == *eth0_ || port == *eth2_;
}

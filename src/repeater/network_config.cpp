// The LAN of a repeater.
#include "repeater/network_config.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string_view>

#include "platform/log.h"
#include "platform/process.h"
#include "platform/text.h"
#include "repeater/bands.h"
#include "repeater/uci_commands.h"
#include "system_helpers.h"
#include "uci_section.h"

namespace {

// The messages of the helpers are known by the name of the function that they work for.
constexpr const char* kStart = "StartDhcpServerAfterConnectedSucc";

constexpr std::size_t kAddressMax = 15;
constexpr std::size_t kDnsSize = 8;

// The stations that the stored configuration uses; empty (logged) when there is no such configuration.
std::span<const std::size_t> find_stations(std::string_view mlo, std::string_view band_name) {
  if (const MloVariant* variant = find_mlo_variant(mlo)) return variant->bands;
  if (mlo != "0") {
    log_error_as(kStart, "get mlo band error\n");
    return {};
  }
  const auto is_named = [band_name](const Band& band) { return band_name == band.name; };
  const auto band = std::find_if(kBands.begin(), kBands.end(), is_named);
  if (band == kBands.end()) {
    log_error_as(kStart, "repeater band error\n");
    return {};
  }
  return std::span(kEveryBand).subspan(static_cast<std::size_t>(band - kBands.begin()), 1);
}

bool attach_stations() {
  const std::optional<std::string> band = read_select_band();
  if (!band) {
    log_error_as(kStart, "get repeater band error\n");
    return false;
  }
  const std::optional<std::string> mlo = read_mlo_variant();
  if (!mlo) {
    log_error_as(kStart, "get mlo band error\n");
    return false;
  }
  const std::span<const std::size_t> stations = find_stations(*mlo, *band);
  for (const std::size_t station : stations) {
    set_wireless(kBands[station].station, "network", "lan");
  }
  return !stations.empty();
}

}  // namespace

int GetLanIpaddr(std::string& address) {
  const platform::ProcessResult result = platform::run_shell(R"(ifconfig br-lan | awk -F'[ :]+' '/inet / {print $4}')");
  if (!result.started) {
    log_error("popen error\n");
    return 1;
  }
  if (result.output.empty()) {
    log_error("fgets ip addr error\n");
    return 1;
  }
  address = platform::split_lines(result.output, kAddressMax + 1).front();
  return 0;
}

int GetLanIpaddrPrefix(const std::string& address, std::string& prefix) {
  constexpr std::array<const char*, 3> kDots{"first", "second", "third"};
  std::size_t end = 0;
  for (const char* dot : kDots) {
    end = address.find('.', dot == kDots.front() ? 0 : end + 1);
    if (end == std::string::npos) {
      log_error("Invalid IP address: no %s dot\n", dot);
      return 1;
    }
  }
  prefix = address.substr(0, end);
  return 0;
}

int SetNetworkParamInfoToConnect() {
  std::string address;
  if (GetLanIpaddr(address) != 0) {
    log_error("GetLanIpaddr error\n");
    return 1;
  }
  log_debug("ipaddr=%s", address.c_str());
  uci_set_value("network.lan.ipaddr", address);
  uci_command("set network.lan.netmask=255.255.255.0");
  uci_command("set network.lan.proto=static");
  uci_command("set dhcp.lan.ignore=0");

  std::string prefix;
  if (GetLanIpaddrPrefix(address, prefix) != 0) return 1;
  uci_set_value("dhcp.lan.start", prefix + ".204");  // a whole address: kept as it is
  os_system("/etc/init.d/dnsmasq restart");
  return 0;
}

int StartDhcpServerAfterConnectedSucc() {
  uci_command("set dhcp.lan.ignore=1");  // the upstream network serves DHCP from now on
  if (!attach_stations()) return 1;
  if (!uci::Section("network", "lan").read("dns", kDnsSize)) {
    uci_command("delete network.lan.ipaddr");
    uci_command("delete network.lan.netmask");
    uci_command("delete network.lan.ip6assign");
    uci_command("set network.lan.proto=dhcp");
  }
  uci_command("set network.lan.proto=dhcp");
  uci_command("set network.lan.ifname='eth0 eth2'");
  uci_commit("wireless", "network", "dhcp", "repeater");
  return 0;
}

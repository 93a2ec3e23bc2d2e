// Reading and writing of the DHCP server's settings.
#include "lan/dhcp_settings.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "platform/log.h"
#include "platform/process.h"
#include "platform/text.h"
#include "system_helpers.h"
#include "uci_section.h"

namespace {

// What the log knows the two by.
constexpr const char* kSetter = "cmd_set_dhcp";
constexpr const char* kGetter = "cmd_get_dhcp";
constexpr std::size_t kOptionSize = 128;
constexpr std::size_t kTextMax = 31;
constexpr int kHoursOfDay = 24;
constexpr long kMostAddresses = 99999;

uci::Section lan_pool() { return {"dhcp", "lan"}; }

bool set_lan_option(const char* option, const std::string& value, const char* message_tail,
                    platform::LogPlace place = platform::LogPlace::here(kSetter)) {
  if (lan_pool().set(option, value)) return true;
  log_error_at(place, "fail to set dhcp.lan.%s%s by uci api\n", option, message_tail);
  return false;
}

bool delete_lan_option(const char* option, platform::LogPlace place = platform::LogPlace::here(kSetter)) {
  if (lan_pool().remove(option)) return true;
  log_error_at(place, "fail to delete dhcp.lan.%s  by uci api\n", option);
  return false;
}

void apply_dhcp() {
  os_system("uci commit dhcp");
  os_system("/etc/init.d/dnsmasq  restart");
}

bool disable_dhcp() {
  for (const char* option : {"leasetime", "start", "limit"}) {
    if (!delete_lan_option(option)) return false;
  }
  if (!set_lan_option("ignore", "1", " to 1")) return false;
  apply_dhcp();
  return true;
}

// A host that stays would be taken for the first of the new ones.
bool delete_hosts(int count) {
  for (int index = 0; index < count; ++index) {
    if (os_system("uci del dhcp.@host[0]") == 1) continue;
    log_error_as(kSetter, "fail to delete dhcp.host by uci\n");
    return false;
  }
  return true;
}

struct HostOption {
  const char* option;
  const char* message_name;
  std::string value;
};

bool add_host(const FixedHost& host, int index, const std::string& lease) {
  os_system("uci add dhcp host");
  std::string mac = host.mac;
  AddColonOfMac(mac);
  const uci::Section section("dhcp", uci::position("host", index));
  const std::array<HostOption, 5> options{{
      {"ip", "ip", host.ip},
      {"leasetime", "leaseTime", lease},
      {"name", "name", std::to_string(index)},
      {"dns", "dns", "1"},
      {"mac", "mac", std::string(platform::cut_utf8(mac, kTextMax))},
  }};
  for (const HostOption& option : options) {
    if (section.set(option.option, option.value)) continue;
    log_error_as(kSetter, "fail to set dhcp.host.%s by uci api\n", option.message_name);
    return false;
  }
  return true;
}

bool replace_hosts(const DhcpSettings& settings, const std::string& lease) {
  if (!delete_hosts(get_num_fix_ip())) return false;
  if (settings.hosts.empty()) return true;
  os_system("uci commit dhcp");
  int index = 0;
  return std::ranges::all_of(settings.hosts, [&](const FixedHost& host) { return add_host(host, index++, lease); });
}

void read_hosts(DhcpSettings& settings) {
  // One buffer for all, never cleared: a host without a MAC shows what was read before it.
  std::array<char, 256> line{};
  const auto first_line = [&line](const std::string& command) {
    execute_cmd(command.c_str(), line.data(), line.size() - 1);
    return std::string(platform::cut_utf8(line.data(), kTextMax));
  };
  const int count = std::min(get_num_fix_ip(), static_cast<int>(kMostFixedHosts));
  for (int index = 0; index < count; ++index) {
    const std::string section = "uci get dhcp.@host\\[" + std::to_string(index) + "\\]\\.";
    FixedHost& host = settings.hosts.emplace_back();
    host.ip = first_line(section + "ip");
    host.mac = first_line(section + "mac");
  }
}

// The pool, of a server that is on. False on failure.
bool read_pool(DhcpSettings& settings) {
  const std::optional<std::string> lease = lan_pool().read("leasetime", kOptionSize);
  if (!lease) {
    log_error_as(kGetter, "Fail to get dhcp.lan.leasetime by uci api\n");
    return false;
  }
  settings.lease_time = lease_hours(*lease);
  const std::optional<std::string> start = lan_pool().read("start", kTextMax + 1);
  if (!start) {
    log_error_as(kGetter, "Fail to get dhcp.lan.start value by uci api\n");
    return false;
  }
  settings.start_address = *start;
  const std::optional<std::string> limit = lan_pool().read("limit", kOptionSize);
  if (!limit) {
    log_error_as(kGetter, "Fail to get dhcp.lan.limit value by uci api\n");
    return false;
  }
  std::string head;
  const int first = GetLastDigitOfIP(settings.start_address, &head);
  if (first <= 0) {
    log_error_as(kGetter, "Fail to get last digit from dhcp start ip\n");
    return false;
  }
  // Bounded before the addition: the option may hold any number.
  const long addresses = std::clamp(std::strtol(limit->c_str(), nullptr, 10), -kMostAddresses, kMostAddresses);
  const long last = first + addresses - 1;
  settings.end_address = platform::cut_utf8(head + "." + std::to_string(last), kTextMax);
  return true;
}

}  // namespace

std::string lease_text(int hours) {
  const int days = hours / kHoursOfDay;
  return days > 0 ? std::to_string(days) + "d" : std::to_string(hours) + "h";
}

int lease_hours(const std::string& text) {
  const long number = std::clamp(std::strtol(text.c_str(), nullptr, 10), -1000000L, 1000000L);
  if (text.ends_with('h')) return static_cast<int>(number);
  return text.ends_with('d') ? static_cast<int>(number) * kHoursOfDay : 0;
}

int get_num_fix_ip() {
  const platform::ProcessResult result = platform::run_shell(R"(uci show dhcp | grep '@host\[.*\]=host')");
  if (!result.started) {
    log_error("Fail to execute CMD\n");
    return 1;
  }
  return static_cast<int>(std::ranges::count(result.output, '\n'));
}

int GetLastDigitOfIP(const std::string& ip, std::string* head) {
  constexpr std::size_t kMostDigits = 3;
  if (ip.empty()) {
    log_error("the value of passing parameter is empry when calling");
    return -1;
  }
  const std::size_t dot = ip.rfind('.');
  if (head != nullptr) *head = ip.substr(0, dot == std::string::npos ? 0 : dot);
  return dot == std::string::npos ? 0 : std::atoi(ip.substr(dot + 1, kMostDigits).c_str());
}

void AddColonOfMac(std::string& mac) {
  constexpr std::size_t kMacTextLength = 17;
  if (mac.size() == kMacTextLength) {
    log_debug("The mac address format is correct.\n");
    return;
  }
  std::string spaced;
  std::size_t characters = 0;
  for (const char byte : mac) {
    const bool continues_character = (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
    if (!continues_character && characters++ != 0 && characters % 2 == 1) spaced += ':';
    spaced += byte;
  }
  mac = spaced;
}

int cmd_get_dhcp(DhcpSettings& settings) {
  const std::string ignore = lan_pool().read_or("ignore", kOptionSize, "");
  const int is_ignored = std::atoi(ignore.c_str());
  log_debug("atoi(getVal) is [%d]", is_ignored);
  settings.enable = is_ignored == 1 ? 0 : 1;
  if (settings.enable == 1 && !read_pool(settings)) return 1;
  read_hosts(settings);
  return 0;
}

int cmd_set_dhcp(const DhcpSettings& settings) {
  if (settings.enable == 0) return disable_dhcp() ? 0 : 1;
  const std::string lease = lease_text(settings.lease_time);
  const int limit =
      GetLastDigitOfIP(settings.end_address, nullptr) - GetLastDigitOfIP(settings.start_address, nullptr) + 1;
  const bool written = set_lan_option("ignore", "0", " to 0") && set_lan_option("leasetime", lease, "") &&
                       set_lan_option("start", settings.start_address, "") &&
                       set_lan_option("limit", std::to_string(limit), "") && replace_hosts(settings, lease);
  if (!written) return 1;
  apply_dhcp();
  return 0;
}

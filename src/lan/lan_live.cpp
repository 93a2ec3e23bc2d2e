// Parsers of ifconfig, ip and resolv.conf output.
#include "lan/lan_live.h"

#include "lan/ipv4.h"
#include "lan/lan_settings.h"
#include "platform/process.h"
#include "platform/text.h"

namespace {

constexpr std::size_t kIpv6TextMax = 63;

// What follows the colon of field number `index`; empty when there is no such field or no colon.
std::string_view after_colon(const std::vector<std::string_view>& fields, std::size_t index) {
  return index < fields.size() ? platform::behind(fields[index], ":").value_or("") : "";
}

}  // namespace

LanAddress parse_inet_line(std::string_view line) {
  if (!line.empty()) line.remove_suffix(1);
  const std::vector<std::string_view> fields = platform::pieces(line);
  const std::string_view address = after_colon(fields, 1);
  const std::string_view mask = after_colon(fields, 3);
  if (!check_ipv4_format(address)) return {"0.0.0.0", kAddressNotFound};
  return {std::string(address),
          mask.empty() ? kAddressNotFound : std::string(platform::cut_utf8(mask, kIpv4TextSize - 1))};
}

std::string parse_inet6(std::string_view ifconfig_output, std::string_view scope) {
  constexpr std::string_view kMark = "inet6 addr:";
  for (const std::string& line : platform::split_lines(ifconfig_output)) {
    const std::optional<std::string_view> rest = platform::behind(line, kMark);
    if (!rest || !platform::holds(line, scope)) continue;
    const std::string_view address = platform::trim_start(*rest, " ");
    const std::size_t slash = address.find('/');
    if (slash == 0 || slash == std::string_view::npos) continue;
    return std::string(platform::cut_utf8(address.substr(0, slash), kIpv6TextMax));
  }
  return kAddressNotFound;
}

std::string parse_default_gateway(std::string_view routes) {
  for (const std::string& line : platform::split_lines(routes)) {
    if (!platform::holds(line, "default via")) continue;
    const std::vector<std::string_view> fields = platform::pieces(line);
    return fields.size() < 3 ? kAddressNotFound : std::string(platform::cut_utf8(fields[2], kIpv6TextMax));
  }
  return kAddressNotFound;
}

std::vector<std::string> parse_nameservers(std::string_view resolv_conf, bool ipv4, std::size_t max_length) {
  std::vector<std::string> servers;
  for (const std::string& line : platform::split_lines(resolv_conf)) {
    const std::vector<std::string_view> fields = platform::pieces(line);
    if (fields.size() < 2 || fields[0] != "nameserver") continue;
    if (check_ipv4_format(fields[1]) == ipv4) servers.emplace_back(platform::cut_utf8(fields[1], max_length));
  }
  return servers;
}

std::optional<LanAddress> read_lan_address() {
  const platform::ProcessResult result = platform::run_shell(R"(ifconfig br-lan |grep "inet addr:")");
  if (!result.started) return std::nullopt;
  std::string_view output = result.output;
  return parse_inet_line(platform::take_line(output));
}

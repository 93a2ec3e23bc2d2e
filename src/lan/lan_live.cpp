// Parsers of ifconfig, ip and resolv.conf output.
#include "lan/lan_live.h"

#include "domain/ipv4.h"
#include "lan/lan_settings.h"
#include "platform/process.h"
#include "platform/text.h"

namespace {

constexpr std::size_t kIpv6TextMax = 63;

std::vector<std::string_view> split_at_blanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  std::vector<std::string_view> fields;
  for (std::size_t begin = text.find_first_not_of(kBlanks); begin != std::string_view::npos;
       begin = text.find_first_not_of(kBlanks)) {
    text.remove_prefix(begin);
    fields.push_back(text.substr(0, text.find_first_of(kBlanks)));
    text.remove_prefix(fields.back().size());
  }
  return fields;
}

// What follows the colon of field number `index`; empty when there is no such field or no colon.
std::string_view after_colon(const std::vector<std::string_view>& fields, std::size_t index) {
  if (index >= fields.size()) return {};
  const std::size_t colon = fields[index].find(':');
  return colon == std::string_view::npos ? std::string_view{} : fields[index].substr(colon + 1);
}

}  // namespace

LanAddress parse_inet_line(std::string_view line) {
  if (!line.empty()) line.remove_suffix(1);
  const std::vector<std::string_view> fields = split_at_blanks(line);
  const std::string_view address = after_colon(fields, 1);
  const std::string_view mask = after_colon(fields, 3);
  if (!check_ipv4_format(address)) return {"0.0.0.0", kAddressNotFound};
  return {std::string(address),
          mask.empty() ? kAddressNotFound : std::string(platform::cut_utf8(mask, kIpv4TextSize - 1))};
}

std::string parse_inet6(std::string_view ifconfig_output, std::string_view scope) {
  constexpr std::string_view kMark = "inet6 addr:";
  for (const std::string& line : platform::split_lines(ifconfig_output)) {
    const std::size_t mark = line.find(kMark);
    if (mark == std::string::npos || line.find(scope) == std::string::npos) continue;
    const std::string_view rest = std::string_view(line).substr(mark + kMark.size());
    const std::size_t begin = rest.find_first_not_of(' ');
    const std::size_t slash = rest.find('/');
    if (begin >= slash || slash == std::string_view::npos) continue;
    return std::string(platform::cut_utf8(rest.substr(begin, slash - begin), kIpv6TextMax));
  }
  return kAddressNotFound;
}

std::string parse_default_gateway(std::string_view routes) {
  for (const std::string& line : platform::split_lines(routes)) {
    if (line.find("default via") == std::string::npos) continue;
    const std::vector<std::string_view> fields = split_at_blanks(line);
    return fields.size() < 3 ? kAddressNotFound : std::string(platform::cut_utf8(fields[2], kIpv6TextMax));
  }
  return kAddressNotFound;
}

std::vector<std::string> parse_nameservers(std::string_view resolv_conf, bool ipv4, std::size_t max_length) {
  std::vector<std::string> servers;
  for (const std::string& line : platform::split_lines(resolv_conf)) {
    const std::vector<std::string_view> fields = split_at_blanks(line);
    if (fields.size() < 2 || fields[0] != "nameserver") continue;
    if (check_ipv4_format(fields[1]) == ipv4) servers.emplace_back(platform::cut_utf8(fields[1], max_length));
  }
  return servers;
}

std::optional<LanAddress> read_lan_address() {
  const platform::ProcessResult result = platform::run_shell(R"(ifconfig br-lan |grep "inet addr:")");
  if (!result.started) return std::nullopt;
  const std::size_t line_feed = result.output.find('\n');
  return parse_inet_line(
      std::string_view(result.output).substr(0, line_feed == std::string::npos ? line_feed : line_feed + 1));
}

// GET /api/v1/dhcp/client-list.
#include "lan/dhcp_leases.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <sys/sysinfo.h>

#include "answer/answer.h"
#include "handlers.h"
#include "platform/log.h"
#include "platform/process.h"
#include "system_helpers.h"

namespace {

constexpr std::size_t kLineSize = 256;
constexpr std::size_t kTextMax = 31;

std::vector<std::string> split_at_commas(std::string_view line) {
  std::vector<std::string> fields;
  while (!line.empty()) {
    const std::size_t comma = line.find(',');
    if (comma != 0) fields.emplace_back(line.substr(0, comma).substr(0, kTextMax));
    line.remove_prefix(comma == std::string_view::npos ? line.size() : comma + 1);
  }
  return fields;
}

// What awk makes of the lease file; nullopt, logged, when no command can be run.
std::optional<std::string> read_lease_lines() {
  const platform::ProcessResult result =
      platform::run_shell(R"(cat /tmp/dhcp.leases | awk 'BEGIN{OFS=","} {print $1,$2,$3}')");
  if (result.started) return result.output;
  log_error("Fail to execute CMD\n");
  return std::nullopt;
}

json::JsonPtr build_list(const std::vector<Lease>& leases) {
  json::JsonPtr list = json::new_array();
  for (const Lease& lease : leases) {
    json::JsonPtr entry = json::new_object();
    json::add(entry.get(), "ipAddress", lease.ip);
    json::add(entry.get(), "macAddress", lease.mac);
    json::add(entry.get(), "remainTime", lease.remain_time);
    json::append(list.get(), std::move(entry));
  }
  return list;
}

}  // namespace

long get_uptime_seconds() {
  struct sysinfo info {};
  return sysinfo(&info) == 0 ? info.uptime : std::time(nullptr);
}

std::vector<Lease> parse_leases(std::string_view lines, long now_s) {
  std::vector<Lease> leases;
  for (const std::string& line : platform::split_lines(lines, kLineSize)) {
    const std::vector<std::string> fields = split_at_commas(without_line_end(line));
    if (fields.size() != 3) continue;
    const long expiry = std::strtol(fields[0].c_str(), nullptr, 10);
    if (expiry == 0 || expiry <= now_s) continue;
    const long remain = std::min<long>(expiry - now_s, std::numeric_limits<int>::max());
    leases.push_back({fields[2], fields[1], static_cast<int>(remain)});
  }
  return leases;
}

int handle_get_dhcp_client(FCGX_Request* request) {
  const long now_s = get_uptime_seconds();
  if (now_s < 0) {
    std::perror("error, fail to call time()\n");
    return answer(request, kResultFailed);
  }
  const std::optional<std::string> lines = read_lease_lines();
  if (!lines) return answer(request, kResultFailed);
  const std::vector<Lease> leases = parse_leases(*lines, now_s);
  const json::JsonPtr document = json::new_object();
  json::add(document.get(), "result", 0);
  json::add(document.get(), "version", 1);
  json::add(document.get(), "clientCount", static_cast<int>(leases.size()));
  json::add(document.get(), "clientList", build_list(leases));
  return answer(request, document);
}

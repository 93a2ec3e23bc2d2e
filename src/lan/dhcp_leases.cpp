// GET /api/v1/dhcp/client-list.
#include "lan/dhcp_leases.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "answer/answer.h"
#include "handlers.h"
#include "platform/host.h"
#include "platform/log.h"
#include "platform/process.h"
#include "platform/text.h"
#include "system_helpers.h"

namespace {

constexpr std::size_t kLineMax = 255;
constexpr std::size_t kTextMax = 31;
constexpr std::size_t kFieldCount = 3;

// What awk makes of the lease file; nullopt, logged, when no command can be run.
std::optional<std::string> read_lease_lines() {
  const platform::ProcessResult result =
      platform::run_shell(R"(cat /tmp/dhcp.leases | awk 'BEGIN{OFS=","} {print $1,$2,$3}')");
  if (result.started) return result.output;
  log_error_as("handle_get_dhcp_client", "Fail to execute CMD\n");
  return std::nullopt;
}

}  // namespace

std::int64_t get_uptime_seconds() {
  const std::optional<long> uptime = platform::uptime_seconds();
  return uptime ? *uptime : std::time(nullptr);
}

void for_each_lease(std::string_view lines, std::int64_t now_s, const std::function<void(const Lease&)>& visit) {
  while (!lines.empty()) {
    const std::string_view line = without_line_end(platform::take_line(lines, kLineMax));
    const std::vector<std::string_view> fields = platform::pieces(line, ",");
    if (fields.size() != kFieldCount) continue;
    const std::int64_t expiry = std::strtoll(std::string(platform::cut_utf8(fields[0], kTextMax)).c_str(), nullptr, 10);
    if (expiry == 0 || expiry <= now_s) continue;
    const std::string_view mac = platform::cut_utf8(fields[1], kTextMax);
    const std::string_view ip = platform::cut_utf8(fields[2], kTextMax);
    visit({ip, mac, static_cast<int>(std::min<std::int64_t>(expiry - now_s, std::numeric_limits<int>::max()))});
  }
}

int handle_get_dhcp_client(FCGX_Request* request) {
  const std::int64_t now_s = get_uptime_seconds();
  if (now_s < 0) {
    std::perror("error, fail to call time()\n");
    return answer(request, answers::kFailed);
  }
  const std::optional<std::string> lines = read_lease_lines();
  if (!lines) return answer(request, answers::kFailed);
  json::ListText list;
  int count = 0;
  for_each_lease(*lines, now_s, [&](const Lease& lease) {
    json::ObjectText entry;
    entry.add("ipAddress", lease.ip).add("macAddress", lease.mac).add("remainTime", lease.remain_time);
    list.add(std::move(entry));
    ++count;
  });
  json::ObjectText document = json::success_text();
  document.add("clientCount", count).add("clientList", std::move(list));
  return answer(request, std::move(document));
}

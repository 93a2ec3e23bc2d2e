// GET and POST /api/v1/dhcp.
#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "answer/read_object.h"
#include "handlers.h"
#include "lan/dhcp_settings.h"
#include "platform/log.h"
#include "platform/text.h"

namespace {

constexpr const char* kSetHandler = "handle_set_dhcp_config";
constexpr std::size_t kTextMax = 31;
constexpr BodyMessages kBodyMessages{.no_content = "empty request_body is passed on seting dhcp config\n",
                                     .no_json = "can't parse request_body to json format.\n",
                                     .no_object = "can't parse request_body to json format.\n"};

// A missing key is told in the log and leaves 0, or an empty text.
int read_number(const json::Object& object, const char* key,
                platform::LogPlace place = platform::LogPlace::here(kSetHandler)) {
  const std::optional<int> value = object.number(key);
  if (!value) log_error_at(place, "%s is not found.\n", key);
  return value.value_or(0);
}

std::string read_text(const json::Object& object, const char* key,
                      platform::LogPlace place = platform::LogPlace::here(kSetHandler)) {
  const std::optional<std::string> value = object.text(key);
  if (!value) log_error_at(place, "%s is not found.\n", key);
  return std::string(platform::cut_utf8(value.value_or(""), kTextMax));
}

// False when there is something else than a list, or it is not `stated` long, or too long, or holds anything but
// objects.
bool read_hosts(const json::Object& asked, int stated, DhcpSettings& settings) {
  const json::List list = asked.list("fixedIpAllocation");
  if (!list && asked.has_any("fixedIpAllocation")) return false;
  const bool is_as_long = stated >= 0 && static_cast<std::size_t>(stated) == list.size();
  if (!is_as_long || list.size() > kMostFixedHosts) return false;
  if (!list.holds_objects_alone()) return false;
  for (const json::Object host : list) {
    settings.hosts.push_back({read_text(host, "ipAddress"), read_text(host, "macAddress")});
  }
  return true;
}

bool are_texts_storable(const DhcpSettings& settings) {
  if (!platform::is_one_line(settings.start_address) || !platform::is_one_line(settings.end_address)) return false;
  return std::ranges::all_of(settings.hosts, [](const FixedHost& host) {
    return platform::is_one_line(host.ip) && platform::is_one_line(host.mac);
  });
}

// False when the request is to be refused.
bool read_settings(const json::Object& asked, DhcpSettings& settings) {
  settings.enable = read_number(asked, "enable");
  settings.lease_time = read_number(asked, "leaseTime");
  const int stated = read_number(asked, "fixedIpCount");
  settings.start_address = read_text(asked, "startAddress");
  settings.end_address = read_text(asked, "endAddress");
  return read_hosts(asked, stated, settings) && are_texts_storable(settings);
}

json::ListText build_hosts(const DhcpSettings& settings) {
  json::ListText hosts;
  for (const FixedHost& host : settings.hosts) {
    hosts.add(json::ObjectText().add("ipAddress", host.ip).add("macAddress", host.mac));
  }
  return hosts;
}

}  // namespace

int handle_get_dhcp_config(FCGX_Request* request) {
  DhcpSettings settings;
  if (cmd_get_dhcp(settings) != 0) {
    log_error("fun:%s,line:%d, get dhcp param error.\n", __func__, __LINE__);
    return answer(request, json::result_text(2));
  }
  json::ObjectText document = json::success_text();
  document.add("enable", settings.enable).add("leaseTime", settings.lease_time);
  document.add("startAddress", settings.start_address).add("endAddress", settings.end_address);
  document.add("fixedIpCount", static_cast<int>(settings.hosts.size()));
  document.add("fixedIpAllocation", build_hosts(settings));
  return answer(request, std::move(document));
}

int handle_set_dhcp_config(FCGX_Request* request, const char* body) {
  const json::Document document = read_object(request, body, kBodyMessages);
  if (!document) return 0;
  DhcpSettings settings;
  if (!read_settings(document.root(), settings)) return answer(request, answers::kUnusable);
  return answer(request, cmd_set_dhcp(settings) == 0 ? answers::wait(20) : answers::kFailed);
}

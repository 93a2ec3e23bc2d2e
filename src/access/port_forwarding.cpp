// GET and POST /api/v1/port-open, POST /api/v1/delete-port.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "access/firewall.h"
#include "access/rule_list.h"
#include "answer/answer.h"
#include "answer/json_reading.h"
#include "handlers.h"
#include "platform/log.h"
#include "platform/text.h"
#include "system_helpers.h"
#include "uci_section.h"

namespace {

constexpr const char* kGetHandler = "handle_get_portopen_json";
constexpr const char* kPackage = "portmapping";
constexpr const char* kType = "redirect";
constexpr RuleList kRules{.key = "portOpenSettings", .package = kPackage, .type = kType, .most_ids = 256};
constexpr std::string_view kDone = answers::wait(5);
constexpr int kTcp = 1;
constexpr int kUdp = 2;

// Sizes of the fields, with their terminator.
constexpr std::size_t kNameSize = 1024;
constexpr std::size_t kAddressSize = 16;
constexpr std::size_t kProtocolSize = 8;
constexpr std::size_t kPortSize = 10;

std::string get_rule_option(int index, const char* option, std::size_t size) {
  std::array<char, 64> text{};
  const std::string section = uci::position(kType, index);
  get_uci_option_value(kPackage, section.c_str(), option, text.data(), text.size());
  return std::string(platform::cut_utf8(text.data(), size - 1));
}

void add_protocol(json::ObjectText& rule, const std::string& protocol) {
  if (protocol.empty()) rule.add("protocol", 0);
  if (protocol == "tcp") rule.add("protocol", kTcp);
  if (protocol == "udp") rule.add("protocol", kUdp);
}

void add_port(json::ObjectText& rule, const char* key, const char* option, const std::string& port) {
  if (port.empty()) return;
  const int number = std::atoi(port.c_str());
  log_debug_as(kGetHandler, "%s: %d\n", option, number);
  rule.add(key, number);
}

json::ObjectText read_rule(int index) {
  json::ObjectText rule;
  rule.add("id", index).add("settingName", get_rule_option(index, "name", kNameSize));
  const std::string address = get_rule_option(index, "dest_ip", kAddressSize);
  log_debug_as(kGetHandler, "dest_ip: %s\n", address.c_str());
  rule.add("ipAddress", address);
  add_protocol(rule, get_rule_option(index, "proto", kProtocolSize));
  add_port(rule, "lanPortNum", "dest_port", get_rule_option(index, "dest_port", kPortSize));
  add_port(rule, "wanPortNum", "src_dport", get_rule_option(index, "src_dport", kPortSize));
  return rule;
}

struct Setting {
  const char* option;
  std::string value;
};

bool set_rule(const std::vector<Setting>& settings) {
  const uci::Section rule(kPackage, uci::position(kType, -1));
  return std::ranges::all_of(settings, [&](const Setting& setting) { return rule.set(setting.option, setting.value); });
}

// Every element is a rule that can be stored. One without a destination would open the router itself.
bool is_storable(const json::List& list) {
  for (const json::Object rule : list) {
    const std::string address = rule.text("ipAddress").value_or("");
    if (address.empty() || !platform::is_one_line(address)) return false;
    if (!platform::is_storable(rule.text("settingName").value_or(""))) return false;
  }
  return true;
}

bool add_rule(const json::Object& element) {
  const auto text = [&element](const char* key) { return element.text(key).value_or(""); };
  const auto port = [&element](const char* key) {
    constexpr std::size_t kDigits = 7;
    return std::to_string(element.number(key).value_or(0)).substr(0, kDigits);
  };
  if (!uci::append(kPackage, kType)) return false;
  std::vector<Setting> settings{
      {"dest_port", port("lanPortNum")},
      {"src", "wan"},
      {"name", text("settingName")},
      {"src_dport", port("wanPortNum")},
      {"target", "DNAT"},
      {"dest_ip", text("ipAddress")},
      {"dest", "lan"},
  };
  const int protocol = element.number("protocol").value_or(0);
  if (protocol == kTcp) settings.push_back({"proto", "tcp"});
  if (protocol == kUdp) settings.push_back({"proto", "udp"});
  return set_rule(settings);
}

// False on failure. The old rules are gone even when the request names no list: kept as it is.
bool set_rules(const char* body) {
  constexpr const char* kHandler = "handle_set_portopen";
  const json::Document document = parse_object(body, kNoRules, platform::LogPlace::here(kHandler));
  if (!document) return false;
  const json::List list = document->list(kRules.key);
  if (!list && document->has_any(kRules.key)) return false;
  if (!is_storable(list) || !delete_all(kRules, platform::LogPlace::here(kHandler))) return false;
  if (!list_of(document, kRules, platform::LogPlace::here(kHandler))) return false;
  for (const json::Object rule : list) {
    if (!add_rule(rule)) return false;
  }
  return true;
}

int port_mapping_delete_from_json(const char* body) { return delete_listed(body, kRules) ? 0 : 1; }

}  // namespace

int handle_get_portopen_json(FCGX_Request* request) {
  const std::optional<int> count = uci::count(kPackage, kType);
  if (!count) return answer(request, json::result_text(1));
  uci::release();  // the rules are read through commands
  json::ListText rules;
  for (int index = 0; index < *count; ++index) rules.add(read_rule(index));
  json::ObjectText document = json::success_text();
  document.add("portOpenSettings", std::move(rules));
  return answer(request, std::move(document));
}

int handle_set_portopen(FCGX_Request* request, const char* body) {
  return answer_change(request, set_rules(body), kDone);
}

int handle_delete_portopen(FCGX_Request* request, const char* body) {
  return answer_change(request, port_mapping_delete_from_json(body) == 0, kDone);
}

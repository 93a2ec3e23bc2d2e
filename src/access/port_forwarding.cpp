// GET and POST /api/v1/port-open, POST /api/v1/delete-port.
#include <array>
#include <cstdlib>
#include <string>

#include "access/firewall.h"
#include "access/rule_list.h"
#include "answer/answer.h"
#include "handlers.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_access.h"

namespace {

constexpr const char* kPackage = "portmapping";
constexpr const char* kType = "redirect";
constexpr const char* kConfdir = "/etc/config";
constexpr std::size_t kMostIds = 256;
constexpr int kTcp = 1;
constexpr int kUdp = 2;
constexpr std::string_view kResultOkWait5 = R"({"result": 0, "version": 1, "waitTime": 5})";

// Sizes of the fields, with their terminator.
constexpr std::size_t kNameSize = 1024;
constexpr std::size_t kAddressSize = 16;
constexpr std::size_t kProtocolSize = 8;
constexpr std::size_t kPortSize = 10;

std::string get_rule_option(int index, const char* option, std::size_t size) {
  std::array<char, 64> text{};
  const std::string section = position_of(kType, index);
  get_uci_option_value(kPackage, section.c_str(), option, text.data(), text.size());
  return std::string(text.data()).substr(0, size - 1);
}

void add_protocol(json_object* entry, const std::string& protocol) {
  if (protocol.empty()) json::add(entry, "protocol", 0);
  if (protocol == "tcp") json::add(entry, "protocol", kTcp);
  if (protocol == "udp") json::add(entry, "protocol", kUdp);
}

void add_port(json_object* entry, const char* key, const char* option, const std::string& port) {
  if (port.empty()) return;
  const int number = std::atoi(port.c_str());
  log_debug("%s: %d\n", option, number);
  json::add(entry, key, number);
}

json::JsonPtr read_rule(int index) {
  json::JsonPtr entry = json::new_object();
  json::add(entry.get(), "id", index);
  json::add(entry.get(), "settingName", get_rule_option(index, "name", kNameSize));
  const std::string address = get_rule_option(index, "dest_ip", kAddressSize);
  log_debug("dest_ip: %s\n", address.c_str());
  json::add(entry.get(), "ipAddress", address);
  add_protocol(entry.get(), get_rule_option(index, "proto", kProtocolSize));
  add_port(entry.get(), "lanPortNum", "dest_port", get_rule_option(index, "dest_port", kPortSize));
  add_port(entry.get(), "wanPortNum", "src_dport", get_rule_option(index, "src_dport", kPortSize));
  return entry;
}

struct Setting {
  const char* option;
  std::string value;
};

bool set_rule(const std::vector<Setting>& settings) {
  for (const Setting& setting : settings) {
    if (UciSetOption(kConfdir, kPackage, "@redirect[-1]", setting.option, setting.value.c_str()) != 0) return false;
  }
  return true;
}

bool add_rule(json_object* element) {
  const auto text = [element](const char* key) { return json::text_member(element, key).value_or(""); };
  const auto port = [element](const char* key) {
    constexpr std::size_t kDigits = 7;
    return std::to_string(json::int_member(element, key).value_or(0)).substr(0, kDigits);
  };
  if (UciCreateAnonymousSection(kConfdir, kPackage, kType) != 0) return false;
  std::vector<Setting> settings{
      {"dest_port", port("lanPortNum")},
      {"src", "wan"},
      {"name", text("settingName")},
      {"src_dport", port("wanPortNum")},
      {"target", "DNAT"},
      {"dest_ip", text("ipAddress")},
      {"dest", "lan"},
  };
  const int protocol = json::int_member(element, "protocol").value_or(0);
  if (protocol == kTcp) settings.push_back({"proto", "tcp"});
  if (protocol == kUdp) settings.push_back({"proto", "udp"});
  return set_rule(settings);
}

// The body as JSON; null, logged, when there is none.
json::JsonPtr parse_body(const char* body) {
  if (body == nullptr) {
    log_error("data is NULL\n");
    return nullptr;
  }
  json::JsonPtr json = json::parse(body);
  if (!json) log_error("jsonObj is NULL\n");
  return json;
}

bool is_list_of_another_type(const json::JsonPtr& json) {
  return json::has_member(json.get(), "portOpenSettings") &&
         json::array_member(json.get(), "portOpenSettings") == nullptr;
}

json_object* list_of(const json::JsonPtr& json) {
  if (json::member(json.get(), "portOpenSettings") == nullptr) log_error("portOpenSettings is NULL\n");
  return json::array_member(json.get(), "portOpenSettings");
}

// 0, or 1 on failure. The old rules are gone even when the request names no new ones.
int set_rules(const char* body) {
  const json::JsonPtr json = parse_body(body);
  if (!json || is_list_of_another_type(json) || !delete_all(kConfdir, kPackage, kType)) return 1;
  json_object* list = list_of(json);
  if (list == nullptr) return 1;
  for (std::size_t index = 0; index < json_object_array_length(list); ++index) {
    json_object* element = json_object_array_get_idx(list, index);
    if (element != nullptr && !add_rule(element)) return 1;
  }
  return 0;
}

int port_mapping_delete_from_json(const char* body) {
  const json::JsonPtr json = parse_body(body);
  json_object* list = json ? list_of(json) : nullptr;
  if (list == nullptr) return 1;
  const std::optional<std::vector<int>> ids = read_ids(list, kMostIds);
  return ids && delete_positions(kPackage, kType, *ids) ? 0 : 1;
}

int answer_change(FCGX_Request* request, int result) {
  answer(request, result == 0 ? kResultOkWait5 : kResultUnusable);
  restart_firewall();
  return result;
}

}  // namespace

int handle_get_portopen_json(FCGX_Request* request) {
  const int count = uci_count_sections(kPackage, kType);
  const json::JsonPtr document = json::new_object();
  json::add(document.get(), "result", count < 0 ? 1 : 0);
  if (count < 0) return answer(request, document);
  json::JsonPtr rules = json::new_array();
  for (int index = 0; index < count; ++index) json::append(rules.get(), read_rule(index));
  json::add(document.get(), "version", 1);
  json::add(document.get(), "portOpenSettings", std::move(rules));
  return answer(request, document);
}

int handle_set_portopen(FCGX_Request* request, const char* body) { return answer_change(request, set_rules(body)); }

int handle_delete_portopen(FCGX_Request* request, const char* body) {
  return answer_change(request, port_mapping_delete_from_json(body));
}

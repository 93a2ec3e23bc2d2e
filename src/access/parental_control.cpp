// GET and POST /api/v1/parental-control, POST /api/v1/parental-control/delete.
#include <array>
#include <cstdlib>
#include <string>

#include "access/firewall.h"
#include "access/rule_list.h"
#include "answer/answer.h"
#include "handlers.h"
#include "platform/log.h"
#include "uci_access.h"

namespace {

constexpr const char* kPackage = "mia";
constexpr const char* kType = "macbind";
constexpr const char* kConfdir = "/etc/config/";
constexpr std::size_t kMostIds = 2048;
constexpr std::size_t kValueSize = 1024;
constexpr std::string_view kResultOkWait10 = R"({"result": 0, "version": 1, "waitTime": 10})";

struct Field {
  const char* key;
  const char* option;
};
// The explanation stands under the option name "enable": the firewall scripts know it there.
constexpr std::array<Field, 4> kFields{{
    {"explain", "enable"},
    {"macAddress", "macaddr"},
    {"startTime", "timeon"},
    {"endTime", "timeoff"},
}};

json::JsonPtr result_document(int result) {
  json::JsonPtr document = json::new_object();
  json::add(document.get(), "result", result);
  return document;
}

// A field of an entry. An empty text is stored as an absent option, which therefore reads as empty. nullopt when the
// entry itself cannot be read, or a list stands in the option's place.
std::optional<std::string> read_field(const std::string& section, const char* option) {
  if (auto text = uci_read(kPackage, section.c_str(), option, kValueSize)) return text;
  const bool is_absent = UciCheckSection(nullptr, kPackage, section.c_str()) == 0 &&
                         !uci_read_list(kPackage, section.c_str(), option, kValueSize, 1);
  return is_absent ? std::optional<std::string>("") : std::nullopt;
}

// Null when a field cannot be read.
json::JsonPtr read_entry(int index) {
  const std::string section = position_of(kType, index);
  json::JsonPtr entry = json::new_object();
  json::add(entry.get(), "id", index);
  for (const Field& field : kFields) {
    const std::optional<std::string> text = read_field(section, field.option);
    if (!text) return nullptr;
    json::add(entry.get(), field.key, *text);
  }
  return entry;
}

// How many entries there are to list: none, too, when the last one's address cannot be read.
int count_entries() {
  const int count = uci_count_sections(kPackage, kType);
  if (count < 0) {
    log_debug("get mia.macbind count error \n");
    return 0;
  }
  if (read_field(position_of(kType, -1), "macaddr")) return count;
  log_debug("get mia.macbind macaddr error \n");
  return 0;
}

// Null when an entry cannot be read.
json::JsonPtr read_entries() {
  json::JsonPtr entries = json::new_array();
  const int count = count_entries();
  for (int index = 0; index < count; ++index) {
    json::JsonPtr entry = read_entry(index);
    if (!entry) return nullptr;
    json::append(entries.get(), std::move(entry));
  }
  return entries;
}

// The list of the request; nullptr, logged, when there is none.
json_object* list_of(const char* body, const json::JsonPtr& json) {
  if (body == nullptr) {
    log_error("data is NULL\n");
  } else if (!json) {
    log_error("jsonObj is NULL\n");
  } else if (json::member(json.get(), "parentalControls") == nullptr) {
    log_error("parentalControls is NULL\n");
  }
  return json::array_member(json.get(), "parentalControls");
}

bool has_all_fields(json_object* element) {
  for (const Field& field : kFields) {
    if (!json::has_member(element, field.key)) return false;
  }
  return true;
}

bool add_entry(json_object* element) {
  if (!has_all_fields(element)) return false;
  for (const Field& field : kFields) {
    log_debug("%s: %s", field.key, json::text_member(element, field.key).value_or("").c_str());
  }
  if (UciCreateAnonymousSection(kConfdir, kPackage, kType) != 0) {
    log_error("Failed to create section %s.%s\n", kPackage, kType);
    return false;
  }
  for (const Field& field : kFields) {
    const std::string value = json::text_member(element, field.key).value_or("");
    if (UciSetOption(kConfdir, kPackage, "@macbind[-1]", field.option, value.c_str()) != 0) {
      log_error("Failed to set %s\n", field.option);
      return false;
    }
  }
  return true;
}

// 0, or 1 on failure; what was written until then stays.
int parental_control_set_from_json(const char* body) {
  const json::JsonPtr json = json::parse(body);
  json_object* list = list_of(body, json);
  if (list == nullptr) return 1;
  if (json::member(json.get(), "enable") == nullptr) {
    log_error("enable is NULL\n");
    return 1;
  }
  const std::string enable = json::text_member(json.get(), "enable").value_or("");
  if (!delete_all(kConfdir, kPackage, kType)) return 1;
  if (UciSetOption(kConfdir, kPackage, "@basic[0]", "enable", enable.c_str()) != 0) {
    log_error("Failed to set enable\n");
    return 1;
  }
  for (std::size_t index = 0; index < json_object_array_length(list); ++index) {
    if (!add_entry(json_object_array_get_idx(list, index))) return 1;
  }
  return 0;
}

int parental_control_delete_from_json(const char* body) {
  const json::JsonPtr json = json::parse(body);
  json_object* list = list_of(body, json);
  if (list == nullptr) return 1;
  const std::optional<std::vector<int>> ids = read_ids(list, kMostIds);
  return ids && delete_positions(kPackage, kType, *ids) ? 0 : 1;
}

// The firewall is restarted after a failure, too: the list may be half written.
int answer_change(FCGX_Request* request, int result) {
  answer(request, result == 0 ? kResultOkWait10 : kResultUnusable);
  restart_firewall();
  return result;
}

}  // namespace

int handle_get_parental_control_info(FCGX_Request* request) {
  const std::optional<std::string> enable = uci_read(kPackage, "@basic[0]", "enable", kValueSize);
  if (!enable) return answer(request, result_document(1));
  const int is_on = std::atoi(enable->c_str());
  json::JsonPtr entries = is_on == 1 ? read_entries() : json::new_array();
  if (!entries) return answer(request, result_document(2));
  const json::JsonPtr document = result_document(0);
  json::add(document.get(), "version", 1);
  json::add(document.get(), "enable", is_on);
  json::add(document.get(), "parentalControls", std::move(entries));
  return answer(request, document);
}

int handle_set_parental_control(FCGX_Request* request, const char* body) {
  return answer_change(request, parental_control_set_from_json(body));
}

int handle_delete_parental_control(FCGX_Request* request, const char* body) {
  return answer_change(request, parental_control_delete_from_json(body));
}

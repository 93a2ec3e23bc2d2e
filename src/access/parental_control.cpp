// GET and POST /api/v1/parental-control, POST /api/v1/parental-control/delete.
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
#include "uci_section.h"

namespace {

// What the log knows them by.
constexpr const char* kGetHandler = "handle_get_parental_control_info";
constexpr const char* kReplace = "parental_control_set_from_json";
constexpr const char* kPackage = "mia";
constexpr const char* kType = "macbind";
constexpr RuleList kRules{.key = "parentalControls", .package = kPackage, .type = kType, .most_ids = 2048};
constexpr std::size_t kValueSize = 1024;
constexpr std::string_view kDone = answers::wait(10);

struct Field {
  const char* key;
  const char* option;
  bool is_free_text;  // may be empty, and of several lines
};
// The explanation stands under the option name "enable": the firewall scripts know it there.
constexpr std::array<Field, 4> kFields{{
    {"explain", "enable", true},
    {"macAddress", "macaddr", false},
    {"startTime", "timeon", false},
    {"endTime", "timeoff", false},
}};

uci::Section basic() { return {kPackage, "@basic[0]"}; }

// A field of an entry. An empty explanation is stored as an absent option, which therefore reads as empty. nullopt when
// another field is absent, the entry itself cannot be read, or a list stands in the option's place.
std::optional<std::string> read_field(const uci::Section& section, const Field& field) {
  if (auto text = section.read(field.option, kValueSize)) return text;
  const bool is_absent = field.is_free_text && section.exists() && !section.read_list(field.option, kValueSize, 1);
  return is_absent ? std::optional<std::string>("") : std::nullopt;
}

// nullopt when a field cannot be read.
std::optional<json::ObjectText> read_entry(int index) {
  const uci::Section section(kPackage, uci::position(kType, index));
  json::ObjectText entry;
  entry.add("id", index);
  for (const Field& field : kFields) {
    const std::optional<std::string> text = read_field(section, field);
    if (!text) return std::nullopt;
    entry.add(field.key, *text);
  }
  return entry;
}

// How many entries there are to list: none, too, when the last one's address cannot be read.
int count_entries() {
  const std::optional<int> count = uci::count(kPackage, kType);
  if (!count) {
    log_debug_as(kGetHandler, "get mia.macbind count error \n");
    return 0;
  }
  if (uci::Section(kPackage, uci::position(kType, -1)).read("macaddr", kValueSize)) return *count;
  log_debug_as(kGetHandler, "get mia.macbind macaddr error \n");
  return 0;
}

// nullopt when an entry cannot be read.
std::optional<json::ListText> read_entries() {
  constexpr std::size_t kUsualSize = 160;  // of an entry's text
  json::ListText entries;
  const int count = count_entries();
  entries.reserve(static_cast<std::size_t>(count) * kUsualSize);
  for (int index = 0; index < count; ++index) {
    std::optional<json::ObjectText> entry = read_entry(index);
    if (!entry) return std::nullopt;
    entries.add(*std::move(entry));
  }
  uci::release();
  return entries;
}

// What is there can be stored and read again; whether anything is missing is told when the entry is written.
bool is_storable(const json::Object& entry) {
  return std::ranges::all_of(kFields, [&entry](const Field& field) {
    const std::optional<std::string> text = entry.text(field.key);
    if (!text) return true;
    return field.is_free_text ? platform::is_storable(*text) : !text->empty() && platform::is_one_line(*text);
  });
}

// Every element is an entry that can be stored.
bool is_storable(const json::List& list) {
  for (const json::Object entry : list) {
    if (!entry || !is_storable(entry)) return false;
  }
  return true;
}

bool add_entry(const json::Object& element) {
  std::array<std::string, kFields.size()> texts;
  for (std::size_t index = 0; index < kFields.size(); ++index) {
    const std::optional<std::string> text = element.text(kFields[index].key);
    if (!text) return false;
    texts[index] = *text;
  }
  for (std::size_t index = 0; index < kFields.size(); ++index) {
    log_debug_as(kReplace, "%s: %s", kFields[index].key, texts[index].c_str());
  }
  if (!uci::append(kPackage, kType)) {
    log_error_as(kReplace, "Failed to create section %s.%s\n", kPackage, kType);
    return false;
  }
  const uci::Section section(kPackage, uci::position(kType, -1));
  for (std::size_t index = 0; index < kFields.size(); ++index) {
    const char* option = kFields[index].option;
    if (!section.set(option, texts[index])) {
      log_error_as(kReplace, "Failed to set %s\n", option);
      return false;
    }
  }
  return true;
}

// 0, or 1 on failure; what was written until then stays.
int parental_control_set_from_json(const char* body) {
  const json::Document document = parse_object(body, kNoRules);
  const json::List list = list_of(document, kRules);
  if (!list) return 1;
  const std::optional<std::string> enable = document->text("enable");
  if (!enable || enable->empty()) {
    log_error("enable is NULL\n");
    return 1;
  }
  if (!platform::is_storable(*enable) || !is_storable(list)) return 1;
  if (!delete_all(kRules)) return 1;
  if (!basic().set("enable", *enable)) {
    log_error("Failed to set enable\n");
    return 1;
  }
  for (const json::Object entry : list) {
    if (!add_entry(entry)) return 1;
  }
  return 0;
}

int parental_control_delete_from_json(const char* body) { return delete_listed(body, kRules) ? 0 : 1; }

}  // namespace

int handle_get_parental_control_info(FCGX_Request* request) {
  const std::optional<std::string> enable = basic().read("enable", kValueSize);
  if (!enable) return answer(request, json::result_text(1));
  const int is_on = std::atoi(enable->c_str());
  std::optional<json::ListText> entries = is_on == 1 ? read_entries() : json::ListText();
  if (!entries) return answer(request, json::result_text(2));
  json::ObjectText document = json::success_text();
  document.add("enable", is_on).add("parentalControls", *std::move(entries));
  return answer(request, std::move(document));
}

int handle_set_parental_control(FCGX_Request* request, const char* body) {
  return answer_change(request, parental_control_set_from_json(body) == 0, kDone);
}

int handle_delete_parental_control(FCGX_Request* request, const char* body) {
  return answer_change(request, parental_control_delete_from_json(body) == 0, kDone);
}

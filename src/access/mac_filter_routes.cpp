// GET and POST /api/v1/wireless/mac-filter.
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "access/mac_filter.h"
#include "answer/answer.h"
#include "answer/json_reading.h"
#include "handlers.h"
#include "platform/log.h"
#include "platform/text.h"
#include "uci_section.h"
#include "unit/operating_mode.h"
#include "wireless.h"

namespace {

constexpr const char* kPackageFile = "/etc/config/macfilter";
constexpr std::size_t kPbcSize = 4;
constexpr int kDecimal = 10;
constexpr std::size_t kDescriptionMax = 255;  // bytes; each one is stored fifteen times

// The stored push-button flags of the two main SSIDs with WPS.
constexpr const char* kSetHandler = "handle_set_mac_filter";

struct Pbc {
  unsigned long ath0 = 0;
  unsigned long ath1 = 0;
};

unsigned long read_pbc(const char* ifname, const char* failure,
                       platform::LogPlace place = platform::LogPlace::here(kSetHandler)) {
  const auto pbc = uci::Section("wireless", ifname).read("wps_pbc", kPbcSize);
  if (!pbc) log_error_at(place, "%s", failure);
  return pbc ? std::strtoul(pbc->c_str(), nullptr, kDecimal) : 0;
}

// Failure answers of both routes are plain.
int refuse(FCGX_Request* request) {
  answer_plain(request, answers::kUnusable);
  return 1;
}

// Logs, and is false.
bool fail(const char* message, platform::LogPlace place = platform::LogPlace::here(kSetHandler)) {
  log_error_at(place, "%s", message);
  return false;
}

void set_enable(const char* value) {
  if (!uci::Section("macfilter", "macfilter").set("enable", value)) {
    log_error_as(kSetHandler, "Failed to set macfilter enable %s", value);
  }
}

// The filter and WPS cannot be used together. Other values than 0 and 1 change nothing.
bool switch_filter(int status, const Pbc& pbc) {
  if (status == 0) {
    set_enable("0");
    clear_macfilter_policy();
    if (set_wps_enable() != 0) return fail("set_wps_enable error");
  }
  if (status == 1) {
    set_enable("1");
    if (set_wps_disable(pbc.ath0, pbc.ath1, 0) != 0) return fail("set_wps_disable error");
    if (set_macFilter_policy() != 0) return fail("Failed to set macfilter policy");
  }
  return true;
}

// False for what an entry can be refused for, told before anything is written.
bool check_entry(const json::Object& entry) {
  if (!entry) return false;
  const std::optional<std::string> description = entry.text("description");
  if (!description) return fail("Failed to get description");
  const std::optional<std::string> mac = entry.text("macAddress");
  if (!mac) return fail("Failed to get macAddress");
  const bool is_description_storable = description->size() <= kDescriptionMax && platform::is_storable(*description);
  if (!is_description_storable) return fail("Failed to set namelist policy");
  if (!platform::is_one_line(*mac)) return fail("Failed to set maclist policy");
  return true;
}

bool check_table(const json::Object& asked) {
  const json::List table = asked.list("macFilterTable");
  if (!table && asked.has_any("macFilterTable")) return false;
  for (const json::Object entry : table) {
    if (!check_entry(entry)) return false;
  }
  return true;
}

bool add_entry(const json::Object& entry) {
  const std::string description = entry.text("description").value_or("");
  const std::string mac = entry.text("macAddress").value_or("");
  if (set_namelist_policy(description.c_str()) != 0) return fail("Failed to set namelist policy");
  if (set_maclist_policy(mac.c_str()) != 0) return fail("Failed to set maclist policy");
  return true;
}

bool replace_table(const json::List& table) {
  if (set_macfilter_cleanup() != 0) return fail("set_macfilter_cleanup error");
  for (const json::Object entry : table) {
    if (!add_entry(entry)) return false;
  }
  return true;
}

bool apply_mac_filter(const char* body) {
  if (!unit::operating_mode()) return fail("Failed to get opmode");
  const Pbc pbc{read_pbc("ath0", "Failed to get wps_pbc"), read_pbc("ath1", "Failed to get wps_state")};
  const json::Document document(body);
  if (!document || !check_table(document.root())) return false;
  const std::optional<int> status = document->number("macFilterStatus");
  if (status && !switch_filter(*status, pbc)) return false;
  if (!replace_table(document->list("macFilterTable"))) return false;
  wifi_reload();
  return true;
}

}  // namespace

int handle_get_mac_filter(FCGX_Request* request) {
  int status = 0;
  get_mac_filter_status(status);
  int count = 0;
  json::ListText table;
  if (parse_mac_filter_table(kPackageFile, table, count) != 0) {
    log_error("Failed to parse mac filter table");
    return refuse(request);
  }
  json::ObjectText document = json::success_text();
  document.add("macFilterStatus", status).add("numOfmacFilterTable", count);
  document.add("max", mac_filter::kTableMax).add("macFilterTable", std::move(table));
  return answer(request, std::move(document));
}

int handle_set_mac_filter(FCGX_Request* request, const char* body) {
  if (!apply_mac_filter(body)) return refuse(request);
  return answer(request, answers::wait(100));
}

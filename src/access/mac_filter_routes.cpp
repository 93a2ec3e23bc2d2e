// GET and POST /api/v1/wireless/mac-filter.
#include <cstdlib>
#include <optional>
#include <string>

#include "access/mac_filter.h"
#include "answer/answer.h"
#include "handlers.h"
#include "platform/log.h"
#include "uci_access.h"
#include "wireless.h"

namespace {

constexpr const char* kPackageFile = "/etc/config/macfilter";
constexpr std::string_view kOkWait100 = R"({"result": 0, "version": 1, "waitTime": 100})";
constexpr std::size_t kOpModeSize = 12;
constexpr std::size_t kPbcSize = 4;
constexpr int kDecimal = 10;

// The stored push-button flags of the two main SSIDs with WPS.
struct Pbc {
  unsigned long ath0 = 0;
  unsigned long ath1 = 0;
};

unsigned long read_pbc(const char* ifname, const char* failure) {
  const auto pbc = uci_read("wireless", ifname, "wps_pbc", kPbcSize);
  if (!pbc) log_error("%s", failure);
  return pbc ? std::strtoul(pbc->c_str(), nullptr, kDecimal) : 0;
}

// Failure answers of both routes are plain.
int refuse(FCGX_Request* request) {
  answer_plain(request, kResultUnusable);
  return 1;
}

int fail(const char* message) {
  log_error("%s", message);
  return 1;
}

void set_enable(const char* value) {
  if (UciSetOption(nullptr, "macfilter", "macfilter", "enable", value) != 0) {
    log_error("Failed to set macfilter enable %s", value);
  }
}

// The filter and WPS cannot be used together. Other values than 0 and 1 change nothing.
int switch_filter(int status, const Pbc& pbc) {
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
  return 0;
}

int add_entry(json_object* entry) {
  const char* description = json_object_get_string(json::member(entry, "description"));
  if (description == nullptr) return fail("Failed to get description");
  const char* mac = json_object_get_string(json::member(entry, "macAddress"));
  if (mac == nullptr) return fail("Failed to get macAddress");
  if (set_namelist_policy(description) != 0) return fail("Failed to set namelist policy");
  if (set_maclist_policy(mac) != 0) return fail("Failed to set maclist policy");
  return 0;
}

int replace_table(json_object* table) {
  if (set_macfilter_cleanup() != 0) return fail("set_macfilter_cleanup error");
  const std::size_t size = table == nullptr ? 0 : json_object_array_length(table);
  for (std::size_t i = 0; i < size; ++i) {
    if (add_entry(json_object_array_get_idx(table, i)) != 0) return 1;
  }
  return 0;
}

// No table at all, or an array of objects: told before anything is changed.
bool is_table_well_formed(json_object* json) {
  if (!json::has_member(json, "macFilterTable")) return true;
  json_object* table = json::array_member(json, "macFilterTable");
  if (table == nullptr) return false;
  for (std::size_t i = 0; i < json_object_array_length(table); ++i) {
    if (!json_object_is_type(json_object_array_get_idx(table, i), json_type_object)) return false;
  }
  return true;
}

int apply_mac_filter(const char* body) {
  if (!uci_read("system", "@system[0]", "op_mode", kOpModeSize)) return fail("Failed to get opmode");
  const Pbc pbc{read_pbc("ath0", "Failed to get wps_pbc"), read_pbc("ath1", "Failed to get wps_state")};
  const json::JsonPtr json = json::parse_object(body);
  if (!json || !is_table_well_formed(json.get())) return 1;
  const auto status = json::int_member(json.get(), "macFilterStatus");
  if (status && switch_filter(*status, pbc) != 0) return 1;
  if (replace_table(json::array_member(json.get(), "macFilterTable")) != 0) return 1;
  wifi_reload();
  return 0;
}

}  // namespace

int handle_get_mac_filter(FCGX_Request* request) {
  int status = 0;
  get_mac_filter_status(status);
  int count = 0;
  json::JsonPtr table = json::new_array();
  if (parse_mac_filter_table(kPackageFile, table.get(), count) != 0) {
    log_error("Failed to parse mac filter table");
    return refuse(request);
  }
  const json::JsonPtr document = json::new_object();
  json_object* root = document.get();
  json::add(root, "result", 0);
  json::add(root, "version", 1);
  json::add(root, "macFilterStatus", status);
  json::add(root, "numOfmacFilterTable", count);
  json::add(root, "max", mac_filter::kTableMax);
  json::add(root, "macFilterTable", std::move(table));
  return answer(request, document);
}

int handle_set_mac_filter(FCGX_Request* request, const char* body) {
  if (apply_mac_filter(body) != 0) return refuse(request);
  return answer(request, kOkWait100);
}

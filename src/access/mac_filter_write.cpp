// Writing of the MAC filter.
#include <algorithm>
#include <string>

#include "access/mac_filter.h"
#include "platform/log.h"
#include "platform/process.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/mesh.h"
#include "wireless.h"

namespace {

constexpr const char* kCommit = "uci commit macfilter";

enum class Ran { kNotStarted, kFailed, kSucceeded };

// One `uci` command with a value in it.
Ran run_uci(const char* action, const std::string& address, platform::LogPlace place) {
  const platform::ProcessResult result = platform::run({"uci", action, address}, {.capture_output = false});
  if (!result.started) {
    log_error_at(place, "system error");
    return Ran::kNotStarted;
  }
  return result.exit_status() == 0 ? Ran::kSucceeded : Ran::kFailed;
}

std::string list_address(const char* ifname, const char* list) {
  return std::string("macfilter.") + (ifname == nullptr ? "(null)" : ifname) + "." + list;
}

// False when the command could not be started; its exit status counts for nothing: there may be no list to delete.
bool delete_list(const char* ifname, const char* list, platform::LogPlace place = platform::LogPlace::here()) {
  if (ifname == nullptr) log_error_at(place, "interface or list_type or value is NULL");
  return run_uci("delete", list_address(ifname, list), place) != Ran::kNotStarted;
}

Ran add_name(const char* ifname, const std::string& description,
             platform::LogPlace place = platform::LogPlace::here()) {
  return run_uci("add_list", list_address(ifname, "namelist=") + description, place);
}

bool set_wps(const char* ifname, wps::Change change, platform::LogPlace place = platform::LogPlace::here()) {
  if (!wps::write(ifname, change)) return true;
  log_error_at(place, "Failed to set wps disable for %s", ifname);
  return false;
}

// Whether any interface took the address.
bool add_to_lists(const char* list, const char* mac, platform::LogPlace place = platform::LogPlace::here()) {
  bool is_taken = false;
  for (const char* ifname : mac_filter::filtered_interfaces(mac_filter::is_mesh_on(place))) {
    if (uci::Section("macfilter", ifname).add_to_list(list, mac)) {
      is_taken = true;
    } else {
      log_error_at(place, "UciAddList wireless error");
    }
  }
  return is_taken;
}

}  // namespace

namespace mac_filter {

std::span<const char* const> filtered_interfaces(bool is_mesh) {
  return std::span(kInterfaces).first(is_mesh ? kMeshInterfaceCount : kInterfaces.size());
}

bool is_mesh_on(platform::LogPlace place) {
  const auto enable = unit::easymesh().read("enable", 4);
  if (!enable) log_error_at(place, "get repacd enable failed.");
  return enable == "1";
}

}  // namespace mac_filter

int execute_uci_del_list(const char* ifname) {
  const bool are_deleted = delete_list(ifname, "maclist");
  const bool are_sec_deleted = delete_list(ifname, "maclist_sec");
  return are_deleted && are_sec_deleted ? 0 : 1;
}

int execute_uci_del_namelist(const char* ifname) { return delete_list(ifname, "namelist") ? 0 : 1; }

int set_wps_enable() {
  for (const char* ifname : std::span(mac_filter::kWpsInterfaces).first(2)) {
    if (!set_wps(ifname, wps::Change::kOn)) return 1;
  }
  return 0;
}

int set_wps_disable(unsigned long ath0_pbc, unsigned long ath1_pbc, int include_ath2) {
  if (ath0_pbc != 1 && ath1_pbc != 1) return 0;  // off already
  for (const char* ifname : std::span(mac_filter::kWpsInterfaces).first(include_ath2 == 1 ? 3 : 2)) {
    if (!set_wps(ifname, wps::Change::kOffBesideFilter)) return 1;
  }
  return 0;
}

// In a mesh the listed devices are kept out ("deny"), outside of one only they are let in: the platform's rule.
int set_macFilter_policy() {
  const bool is_mesh = mac_filter::is_mesh_on();
  for (const char* ifname : mac_filter::filtered_interfaces(is_mesh)) {
    const uci::Section filter("macfilter", ifname);
    if (!filter.set("macfilter_sec", "allow")) log_error("Failed to set macfilter_sec for %s", ifname);
    if (!filter.set("macfilter", is_mesh ? "deny" : "allow")) log_error("Failed to set macfilter for %s", ifname);
  }
  os_system(kCommit);
  return 0;
}

int clear_macfilter_policy() {
  for (const char* ifname : mac_filter::kSecPolicyDeletes) uci::Section("macfilter", ifname).remove("macfilter_sec");
  for (const char* ifname : mac_filter::kPolicyDeletes) uci::Section("macfilter", ifname).remove("macfilter");
  os_system(kCommit);
  return 0;
}

int set_namelist_policy(const char* description) {
  if (description == nullptr) {
    log_error("Invalid parameters");
    return 1;
  }
  bool is_taken = false;
  bool is_each_started = true;
  for (const char* ifname : mac_filter::filtered_interfaces(mac_filter::is_mesh_on())) {
    const Ran ran = add_name(ifname, description);
    is_taken = is_taken || ran == Ran::kSucceeded;
    is_each_started = is_each_started && ran != Ran::kNotStarted;
  }
  os_system(kCommit);
  return is_taken && is_each_started ? 0 : 1;
}

int set_maclist_policy(const char* mac) {
  if (mac == nullptr) {
    log_error("Invalid parameters");
    return 1;
  }
  const bool is_taken_sec = add_to_lists("maclist_sec", mac);
  const bool is_taken = add_to_lists("maclist", mac);
  os_system(kCommit);
  return is_taken_sec && is_taken ? 0 : 1;
}

int set_macfilter_cleanup() {
  for (const char* ifname : mac_filter::kInterfaces) {
    if (execute_uci_del_list(ifname) == 0 && execute_uci_del_namelist(ifname) == 0) continue;
    log_error("Del main interface macfilter error");
    return 1;
  }
  os_system(kCommit);
  return 0;
}

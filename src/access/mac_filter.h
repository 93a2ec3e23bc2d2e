// The wireless MAC filter: UCI package macfilter, whose wifi-iface sections all hold the same lists.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "answer/json_text.h"
#include "platform/log.h"

namespace mac_filter {

inline constexpr int kTableMax = 60;  // what clients are told; longer tables are stored, but not read

// clang-format off
inline constexpr std::array<const char*, 15> kInterfaces{
    "ath0", "ath1", "ath2", "ath01", "ath11", "ath21", "ath04", "ath14", "ath24", "ath05", "ath15", "ath25",
    "ath02", "ath12", "ath22"};
// The orders in which the policies are deleted.
inline constexpr std::array<const char*, 15> kSecPolicyDeletes{
    "ath0", "ath1", "ath2", "ath01", "ath11", "ath21", "ath02", "ath12", "ath22", "ath04", "ath14", "ath24",
    "ath05", "ath15", "ath25"};
inline constexpr std::array<const char*, 15> kPolicyDeletes{
    "ath0", "ath1", "ath2", "ath02", "ath12", "ath22", "ath01", "ath11", "ath21", "ath04", "ath14", "ath24",
    "ath05", "ath15", "ath25"};
// clang-format on
inline constexpr std::size_t kMeshInterfaceCount = 12;  // in a mesh the last three carry the backhaul
inline constexpr std::array<const char*, 3> kWpsInterfaces{"ath0", "ath1", "ath2"};

// The interfaces that are filtered: all, or in a mesh the first twelve.
std::span<const char* const> filtered_interfaces(bool is_mesh);
// button_mesh.easymesh.enable is exactly "1"; an unreadable one counts as off and is logged for the caller.
bool is_mesh_on(platform::LogPlace place = platform::LogPlace::here());

}  // namespace mac_filter

// All int results: 0 on success, 1 on failure (logged). What was written before a failure stays.

// 1 when macfilter.macfilter.enable is exactly "1", else 0, also when it cannot be read. Always 0.
int get_mac_filter_status(int& out);

// Appends the entries of the section 'ath0' of a macfilter package at `path` to `table`, at most kTableMax, and
// counts them. Entry i pairs description i with address i.
int parse_mac_filter_table(const char* path, json::ListText& table, int& count);

// `uci delete` of an interface's address lists, and of its descriptions. Fail when the command could not be started.
int execute_uci_del_list(const char* ifname);
int execute_uci_del_namelist(const char* ifname);

// WPS on, on ath0 and ath1. The detail settings have a function of this name that takes arguments.
int set_wps_enable();
// WPS off, on ath0 and ath1 (and ath2), unless the stored wps_pbc values say that it is off already.
int set_wps_disable(unsigned long ath0_pbc, unsigned long ath1_pbc, int include_ath2);

// The policies of a filter that is on. Single failures do not stop it: an interface may have no section.
int set_macFilter_policy();
// Deletes the policies. Always 0.
int clear_macfilter_policy();

// Appends a description, an address, to every filtered interface. Fail on nullptr, and when no interface took it.
int set_namelist_policy(const char* description);
int set_maclist_policy(const char* mac);

// Empties every list of all fifteen interfaces.
int set_macfilter_cleanup();

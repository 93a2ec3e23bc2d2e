// The tables and steps of the MAC filter's writing.
#include <algorithm>
#include <cerrno>
#include <spawn.h>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "access/mac_filter.h"
#include "fake_tools.h"
#include "uci_access.h"
#include "wireless/router_state.h"

namespace {

int starts_until_none = 0;  // the start of a child, from 1, that fails

}  // namespace

extern "C" {
decltype(posix_spawnp) __real_posix_spawnp;
decltype(posix_spawnp) __wrap_posix_spawnp;

int __wrap_posix_spawnp(pid_t* child, const char* file, const posix_spawn_file_actions_t* actions,
                        const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]) {
  if (starts_until_none > 0 && --starts_until_none == 0) return EAGAIN;
  return __real_posix_spawnp(child, file, actions, attributes, arguments, environment);
}
}

namespace {

void mesh_enable(const char* value) {
  router_state::config("button_mesh", std::string("config easymesh 'easymesh'\n\toption enable '") + value + "'\n");
}

void all_sections() {
  std::string text;
  for (const char* ifname : mac_filter::kInterfaces) text += "config wifi-iface '" + std::string(ifname) + "'\n";
  router_state::config("macfilter", text);
}

std::string option(const char* package, const char* ifname, const char* name) {
  return uci_read_or(package, ifname, name, 32, "-");
}

template <class Names>
std::string joined(const Names& names) {
  std::string text;
  for (const char* name : names) (text += name) += ' ';
  return text;
}

TEST(MacFilterTables, AreTheseInterfaces) {
  const std::string twelve = "ath0 ath1 ath2 ath01 ath11 ath21 ath04 ath14 ath24 ath05 ath15 ath25 ";
  EXPECT_EQ(joined(mac_filter::filtered_interfaces(true)), twelve);
  EXPECT_EQ(joined(mac_filter::filtered_interfaces(false)), twelve + "ath02 ath12 ath22 ");
  EXPECT_EQ(joined(mac_filter::kSecPolicyDeletes),
            "ath0 ath1 ath2 ath01 ath11 ath21 ath02 ath12 ath22 ath04 ath14 ath24 ath05 ath15 ath25 ");
  EXPECT_EQ(joined(mac_filter::kPolicyDeletes),
            "ath0 ath1 ath2 ath02 ath12 ath22 ath01 ath11 ath21 ath04 ath14 ath24 ath05 ath15 ath25 ");
  EXPECT_EQ(joined(mac_filter::kWpsInterfaces), "ath0 ath1 ath2 ");
}

TEST(IsMeshOn, OnlyForOne) {
  for (const char* value : {"0", "11", "01", "2", "on"}) {
    mesh_enable(value);
    EXPECT_FALSE(mac_filter::is_mesh_on()) << value;
  }
  mesh_enable("1");
  EXPECT_TRUE(mac_filter::is_mesh_on());
  router_state::no_config("button_mesh");
  EXPECT_FALSE(mac_filter::is_mesh_on());
}

TEST(SetMacFilterPolicy, EveryInterfaceByMesh) {
  for (const bool is_mesh : {false, true}) {
    mesh_enable(is_mesh ? "1" : "0");
    all_sections();
    EXPECT_EQ(set_macFilter_policy(), 0);
    for (std::size_t i = 0; i < mac_filter::kInterfaces.size(); ++i) {
      const char* ifname = mac_filter::kInterfaces[i];
      const bool is_left_out = is_mesh && i >= 12;
      EXPECT_EQ(option("macfilter", ifname, "macfilter_sec"), is_left_out ? "-" : "allow") << ifname;
      EXPECT_EQ(option("macfilter", ifname, "macfilter"), is_left_out ? "-" : is_mesh ? "deny" : "allow") << ifname;
    }
  }
}

TEST(SetMacFilterPolicy, InterfacesWithoutASectionAreSkipped) {
  mesh_enable("0");
  router_state::config("macfilter", "config wifi-iface 'ath22'\n");
  EXPECT_EQ(set_macFilter_policy(), 0);
  EXPECT_EQ(option("macfilter", "ath22", "macfilter"), "allow");
}

TEST(ClearMacfilterPolicy, TakesAllAway) {
  mesh_enable("0");
  all_sections();
  set_macFilter_policy();
  EXPECT_EQ(clear_macfilter_policy(), 0);
  for (const char* ifname : mac_filter::kInterfaces) {
    EXPECT_EQ(option("macfilter", ifname, "macfilter_sec"), "-") << ifname;
    EXPECT_EQ(option("macfilter", ifname, "macfilter"), "-") << ifname;
  }
}

void wireless(std::initializer_list<const char*> sections) {
  std::string text;
  for (const char* name : sections) text += "config wifi-iface '" + std::string(name) + "'\n\toption wps_pbc 'old'\n";
  router_state::config("wireless", text);
}

std::string wps() {
  std::string text;
  for (const char* ifname : {"ath0", "ath1", "ath2"}) {
    text += option("wireless", ifname, "wps_state") + "/" + option("wireless", ifname, "wps_pbc") + " ";
  }
  return text;
}

TEST(SetWpsDisable, EveryPairOfStoredValues) {
  for (const unsigned long pbc0 : {0UL, 1UL, 2UL})
    for (const unsigned long pbc1 : {0UL, 1UL, 2UL})
      for (const int include_ath2 : {0, 1, 2}) {
        wireless({"ath0", "ath1", "ath2"});
        EXPECT_EQ(set_wps_disable(pbc0, pbc1, include_ath2), 0);
        const std::string last = include_ath2 == 1 ? "0/0 " : "-/old ";
        const bool was_on = pbc0 == 1 || pbc1 == 1;
        EXPECT_EQ(wps(), was_on ? "0/0 0/0 " + last : "-/old -/old -/old ") << pbc0 << pbc1 << include_ath2;
      }
}

TEST(SetWpsDisable, StopsAtTheFirstFailure) {
  wireless({"ath1"});
  EXPECT_EQ(set_wps_disable(1, 1, 0), 1);
  EXPECT_EQ(wps(), "-/- -/old -/- ");
  wireless({"ath0", "ath1"});
  EXPECT_EQ(set_wps_disable(1, 1, 1), 1);
  EXPECT_EQ(wps(), "0/0 0/0 -/- ");
}

TEST(SetWpsEnable, OnTwoInterfacesOrNone) {
  wireless({"ath0", "ath1", "ath2"});
  EXPECT_EQ(set_wps_enable(), 0);
  EXPECT_EQ(wps(), "2/1 2/1 -/old ");
  wireless({"ath1"});
  EXPECT_EQ(set_wps_enable(), 1);
  EXPECT_EQ(wps(), "-/- -/old -/- ");
}

// They fail when no command could be started; what a command says, and whether there is a `uci`, counts for nothing.
TEST(ExecuteUciDelList, DoesNotLookAtTheCommandsEnd) {
  for (const char* ifname : {"ath0", "none", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(execute_uci_del_list(ifname), 0);
    EXPECT_EQ(execute_uci_del_namelist(ifname), 0);
  }
  EXPECT_EQ(set_macfilter_cleanup(), 0);
}

TEST(SetListPolicies, NeedAText) {
  EXPECT_EQ(set_namelist_policy(nullptr), 1);
  EXPECT_EQ(set_maclist_policy(nullptr), 1);
}

TEST(SetMaclistPolicy, FillsBothListsOfTheFilteredInterfaces) {
  for (const bool is_mesh : {false, true}) {
    mesh_enable(is_mesh ? "1" : "0");
    all_sections();
    EXPECT_EQ(set_maclist_policy("00:00:00:00:00:01"), 0);
    EXPECT_EQ(set_maclist_policy("any text"), 0);
    const std::vector<std::string> both{"00:00:00:00:00:01", "any text"};
    for (std::size_t i = 0; i < mac_filter::kInterfaces.size(); ++i)
      for (const char* list : {"maclist", "maclist_sec"}) {
        const auto stored = uci_read_list("macfilter", mac_filter::kInterfaces[i], list, 64, 10);
        EXPECT_EQ(stored.value_or(std::vector<std::string>()), is_mesh && i >= 12 ? std::vector<std::string>() : both);
      }
  }
}

// Sixty is what clients are told; it is no limit of the lists.
TEST(SetMaclistPolicy, TakesMoreThanSixty) {
  mesh_enable("0");
  router_state::config("macfilter", "config wifi-iface 'ath0'\n");
  for (int i = 0; i < 61; ++i) ASSERT_EQ(set_maclist_policy(std::to_string(i).c_str()), 0);
  EXPECT_EQ(uci_read_list("macfilter", "ath0", "maclist", 64, 100)->size(), 61U);
}

TEST(SetMaclistPolicy, FailsWhenNoInterfaceTakesIt) {
  mesh_enable("0");
  router_state::config("macfilter", "config wifi-iface 'ath15'\n");
  EXPECT_EQ(set_maclist_policy("mac"), 0);
  router_state::config("macfilter", "config macfilter 'macfilter'\n");
  EXPECT_EQ(set_maclist_policy("mac"), 1);
}

TEST(SetNamelistPolicy, FailsWhereOneCommandCannotBeStarted) {
  mesh_enable("0");
  FakeTools tools;
  tools.provide("uci");
  EXPECT_EQ(set_namelist_policy("One"), 0);
  EXPECT_EQ(tools.calls().size(), 16U);
  starts_until_none = 3;
  EXPECT_EQ(set_namelist_policy("One"), 1);
  EXPECT_EQ(tools.calls().size(), 15U);
}

}  // namespace

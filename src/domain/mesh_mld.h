// Which MLD interface carries an access point: the lists of (access point, MLD) of every mesh configuration.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "domain/mesh_codes.h"

namespace mesh_mld {

struct Pair {
  const char* ifname;
  const char* mld;
};

enum class Onboarded { kAny, kNo, kYes };

// One mesh configuration. Units that are not orvane share their rows.
struct Row {
  bool is_orvane;
  int role;
  Onboarded onboarded;
  int mode;
  std::span<const Pair> pairs;
};

// clang-format off
inline constexpr Pair kOrvaneController1[] = {
    {"ath0", "mld1"}, {"ath1", "mld1"}, {"ath2", "mld2"}, {"ath01", "mld4"}, {"ath11", "mld5"}, {"ath21", "mld6"}};
inline constexpr Pair kOrvaneController2[] = {
    {"ath0", "mld2"}, {"ath1", "mld1"}, {"ath2", "mld1"}, {"ath01", "mld4"}, {"ath11", "mld5"}, {"ath21", "mld6"}};
inline constexpr Pair kOrvaneAgent1[] = {{"ath0", "mld2"}, {"ath1", "mld2"}, {"ath2", "mld4"}};
inline constexpr Pair kOrvaneAgent2[] = {{"ath0", "mld4"}, {"ath1", "mld2"}, {"ath2", "mld2"}};
inline constexpr Pair kController0[] = {
    {"ath0", "mld3"}, {"ath1", "mld1"}, {"ath2", "mld5"}, {"ath01", "mld7"}, {"ath11", "mld9"}, {"ath21", "mld11"},
    {"ath05", "mld2"}, {"ath15", "mld2"}, {"ath25", "mld2"}};
inline constexpr Pair kController1[] = {
    {"ath0", "mld3"}, {"ath1", "mld1"}, {"ath2", "mld4"}, {"ath01", "mld6"}, {"ath11", "mld8"}, {"ath21", "mld10"},
    {"ath04", "mld7"}, {"ath14", "mld9"}, {"ath24", "mld11"}, {"ath05", "mld2"}, {"ath15", "mld2"}, {"ath25", "mld2"}};
inline constexpr Pair kController2[] = {
    {"ath0", "mld3"}, {"ath1", "mld1"}, {"ath2", "mld5"}, {"ath01", "mld6"}, {"ath11", "mld8"}, {"ath21", "mld10"},
    {"ath04", "mld7"}, {"ath14", "mld9"}, {"ath24", "mld11"}, {"ath05", "mld2"}, {"ath15", "mld2"}, {"ath25", "mld2"}};
inline constexpr Pair kJoiningAgent0[] = {
    {"ath0", "mld6"}, {"ath1", "mld3"}, {"ath2", "mld8"}, {"ath05", "mld5"}, {"ath15", "mld5"}, {"ath25", "mld5"}};
inline constexpr Pair kJoiningAgent1[] = {
    {"ath0", "mld5"}, {"ath1", "mld2"}, {"ath2", "mld6"}, {"ath05", "mld4"}, {"ath15", "mld4"}, {"ath25", "mld4"}};
inline constexpr Pair kJoiningAgent2[] = {
    {"ath0", "mld5"}, {"ath1", "mld2"}, {"ath2", "mld7"}, {"ath05", "mld4"}, {"ath15", "mld4"}, {"ath25", "mld4"}};
inline constexpr Pair kAgent0[] = {
    {"ath0", "mld5"}, {"ath1", "mld3"}, {"ath2", "mld8"}, {"ath05", "mld7"}, {"ath15", "mld7"}, {"ath25", "mld7"}};
inline constexpr Pair kAgent1[] = {
    {"ath0", "mld3"}, {"ath1", "mld2"}, {"ath2", "mld6"}, {"ath05", "mld5"}, {"ath15", "mld5"}, {"ath25", "mld5"}};
inline constexpr Pair kAgent2[] = {
    {"ath0", "mld4"}, {"ath1", "mld2"}, {"ath2", "mld7"}, {"ath05", "mld6"}, {"ath15", "mld6"}, {"ath25", "mld6"}};

inline constexpr std::array<Row, 13> kRows{{
    {true,  kMeshRoleController, Onboarded::kAny, 1, kOrvaneController1},
    {true,  kMeshRoleController, Onboarded::kAny, 2, kOrvaneController2},
    {true,  kMeshRoleAgent,      Onboarded::kAny, 1, kOrvaneAgent1},
    {true,  kMeshRoleAgent,      Onboarded::kAny, 2, kOrvaneAgent2},
    {false, kMeshRoleController, Onboarded::kAny, 0, kController0},
    {false, kMeshRoleController, Onboarded::kAny, 1, kController1},
    {false, kMeshRoleController, Onboarded::kAny, 2, kController2},
    {false, kMeshRoleAgent,      Onboarded::kNo,  0, kJoiningAgent0},
    {false, kMeshRoleAgent,      Onboarded::kNo,  1, kJoiningAgent1},
    {false, kMeshRoleAgent,      Onboarded::kNo,  2, kJoiningAgent2},
    {false, kMeshRoleAgent,      Onboarded::kYes, 0, kAgent0},
    {false, kMeshRoleAgent,      Onboarded::kYes, 1, kAgent1},
    {false, kMeshRoleAgent,      Onboarded::kYes, 2, kAgent2},
}};
// clang-format on

// The row of a configuration, or nullptr. `onboarded` is OnboardingDone: 0 no, else yes.
const Row* find_row(int brand, int role, int mode, int onboarded);
// The MLD of `ifname` in a row, or nullptr.
const char* find_mld(const Row& row, std::string_view ifname);

}  // namespace mesh_mld

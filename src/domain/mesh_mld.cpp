// Look-ups in the lists of access points and their MLDs.
#include "domain/mesh_mld.h"

#include <algorithm>

#include "domain/brands.h"

namespace mesh_mld {

const Row* find_row(int brand, int role, int mode, int onboarded) {
  const auto fits = [=](const Row& row) {
    if (row.is_orvane != (brand == kBrandOrvane) || row.role != role || row.mode != mode) return false;
    return row.onboarded == Onboarded::kAny || (row.onboarded == Onboarded::kYes) == (onboarded != 0);
  };
  const auto* found = std::ranges::find_if(kRows, fits);
  return found == kRows.end() ? nullptr : found;
}

const char* find_mld(const Row& row, std::string_view ifname) {
  const auto found =
      std::ranges::find(row.pairs, ifname, [](const Pair& pair) { return std::string_view(pair.ifname); });
  return found == row.pairs.end() ? nullptr : found->mld;
}

}  // namespace mesh_mld

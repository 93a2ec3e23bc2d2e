// Which MLD carries an access point, by what UCI and the device id say.
#include "unit/mesh_mld.h"

#include <string>

#include <gtest/gtest.h>

#include "domain/mesh_mld.h"
#include "wireless/router_state.h"

namespace {

std::string listed_mld(int brand, int role, int mode, int onboarded, const char* ifname) {
  const mesh_mld::Row* row = mesh_mld::find_row(brand, role, mode, onboarded);
  const char* mld = row == nullptr ? nullptr : mesh_mld::find_mld(*row, ifname);
  return mld == nullptr ? "" : mld;
}

TEST(GetMeshMldByIfname, FollowsWhatUciSaysNow) {
  for (int brand = 0; brand < 3; ++brand)
    for (int role = 0; role < 3; ++role)
      for (const int mode : {0, 1, 2, 3})
        for (int onboarded = 0; onboarded < 2; ++onboarded) {
          router_state::brand(brand);
          router_state::mesh(role, mode, onboarded);
          for (const char* ifname : {"ath0", "ath21", "ath04", "ath15", "ath03"}) {
            const char* mld = get_mesh_mld_by_ifname(ifname);
            EXPECT_EQ(mld == nullptr ? "" : mld, listed_mld(brand, role, mode, onboarded, ifname))
                << "brand " << brand << " role " << role << " mode " << mode << " onboarded " << onboarded << ifname;
          }
        }
}

TEST(GetMeshMldByIfname, NeedsRoleModeAndOnboarding) {
  router_state::brand(1);
  router_state::mesh(1, 1, 0);
  ASSERT_STREQ(get_mesh_mld_by_ifname("ath0"), "mld3");
  EXPECT_EQ(get_mesh_mld_by_ifname(nullptr), nullptr);
  router_state::no_config("repacd");
  EXPECT_EQ(get_mesh_mld_by_ifname("ath0"), nullptr);
  router_state::mesh(1, 1, 0);
  router_state::config("button_mesh", "config easymesh 'easymesh'\n\toption enable '1'\n\toption role 'controller'\n");
  EXPECT_EQ(get_mesh_mld_by_ifname("ath0"), nullptr);
  router_state::no_config("button_mesh");
  EXPECT_EQ(get_mesh_mld_by_ifname("ath0"), nullptr);
}

}  // namespace

// What a request changes in the mesh.
#include "wireless/setting/mesh_change.h"

#include <string>

#include <gtest/gtest.h>

#include "wireless/router_state.h"

namespace {

TEST(MeshModeOfBand, ByLabel) {
  for (const int fallback : {0, 1, 2}) {
    EXPECT_EQ(mesh_mode_of_band("2.4GHz,5GHz", fallback), 1);
    EXPECT_EQ(mesh_mode_of_band("5GHz,6GHz", fallback), 2);
    EXPECT_EQ(mesh_mode_of_band("2.4GHz,5GHz,6GHz", fallback), 0);
    for (const char* other : {"", "5GHz", "2.4GHz,6GHz", "2.4GHz, 5GHz"}) {
      EXPECT_EQ(mesh_mode_of_band(other, fallback), fallback) << other;
    }
  }
}

TEST(GetMeshChangeFlags, EveryCombination) {
  for (const int enable : {0, 1})
    for (const int mode : {0, 1, 2}) {
      router_state::config("button_mesh", "config easymesh 'easymesh'\n\toption enable '" + std::to_string(enable) +
                                              "'\n\toption mode '" + std::to_string(mode) + "'\n");
      router_state::config("repacd", "config MAPConfig 'MAPConfig'\n\toption BackhaulKey 'old key'\n");
      for (const int requested : {0, 1})
        for (const int requested_mode : {0, 1, 2})
          for (const char* key : {"old key", "new key", ""}) {
            const int expected = (requested != enable ? 1 : 0) + (requested_mode != mode ? 2 : 0) +
                                 (std::string(key) != "old key" ? 4 : 0);
            EXPECT_EQ(get_mesh_change_flags(requested, requested_mode, key), expected);
          }
    }
}

// A key of 64 bytes fills its buffer: it is compared whole, a longer one by what fits.
TEST(GetMeshChangeFlags, ComparesTheKeyAsItIsRead) {
  const std::string key(64, 'k');
  router_state::config("button_mesh", "config easymesh 'easymesh'\n\toption enable '0'\n\toption mode '1'\n");
  router_state::config("repacd", "config MAPConfig 'MAPConfig'\n\toption BackhaulKey '" + key + "'\n");
  EXPECT_EQ(get_mesh_change_flags(0, 1, key), 0);
  EXPECT_EQ(get_mesh_change_flags(0, 1, key.substr(1)), 4);
  router_state::config("repacd", "config MAPConfig 'MAPConfig'\n\toption BackhaulKey '" + key + "xyz'\n");
  EXPECT_EQ(get_mesh_change_flags(0, 1, key), 0);
}

}  // namespace

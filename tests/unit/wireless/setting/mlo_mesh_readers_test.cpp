// Which MLO mode the links, or the mesh, come to.
#include "wireless/setting/mlo_mesh_readers.h"

#include <string>

#include <gtest/gtest.h>

#include "wireless/router_state.h"

namespace {

TEST(GetMloValue, EveryCombinationOfLinks) {
  router_state::brand(1);
  router_state::mesh(0, 1, 0);
  for (int disabled = 0; disabled < 27; ++disabled) {  // each link on, off, or without the option
    constexpr const char* kOptions[] = {"\toption disabled '0'\n", "\toption disabled '1'\n", ""};
    const int state[] = {disabled / 9, disabled / 3 % 3, disabled % 3};
    router_state::config("wireless", std::string("config wifi-iface 'ath05'\n") + kOptions[state[0]] +
                                         "config wifi-iface 'ath15'\n" + kOptions[state[1]] +
                                         "config wifi-iface 'ath25'\n" + kOptions[state[2]]);
    const bool on[] = {state[0] == 0, state[1] == 0, state[2] == 0};
    const int expected = on[0] && on[1] && on[2] ? 4 : on[0] && on[1] ? 1 : on[0] && on[2] ? 2 : on[1] && on[2] ? 3 : 0;
    int out = -7;
    EXPECT_EQ(get_mlo_value(out), 0);
    EXPECT_EQ(out, expected) << state[0] << state[1] << state[2];
  }
}

TEST(GetMloValue, OfAMeshGoesByTheModeOnOrvaneAlone) {
  router_state::config("wireless", "");
  for (int brand = 0; brand < 3; ++brand)
    for (int role = 0; role < 3; ++role)
      for (const int mode : {0, 1, 2, 3}) {
        router_state::brand(brand);
        router_state::mesh(role, mode, 0);
        int out = -7;
        EXPECT_EQ(get_mlo_value(out), 0);
        EXPECT_EQ(out, brand != 0 || role == 0 ? 0 : mode == 1 ? 1 : 3);
      }
  router_state::brand(0);
  router_state::config("button_mesh", "config easymesh 'easymesh'\n\toption enable '1'\n");
  int out = -7;
  EXPECT_NE(get_mlo_value(out), 0);
  router_state::no_config("button_mesh");
  EXPECT_NE(get_mlo_value(out), 0);
}

}  // namespace

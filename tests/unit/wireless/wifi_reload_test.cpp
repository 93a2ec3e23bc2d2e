// The reload that the wireless routes share, by brand and part in the mesh.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "domain/mesh_codes.h"
#include "fake_tools.h"
#include "wireless.h"
#include "wireless/router_state.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class WifiReload : public ::testing::Test {
 protected:
  void SetUp() override {
    router_state::brand(0);
    tools_.provide("uci");
    tools_.provide("wifi");
  }
  void TearDown() override {
    for (const char* package : {"button_mesh", "repacd"}) router_state::no_config(package);
  }
  FakeTools tools_;
};

TEST_F(WifiReload, CommitsBeforeItReloadsAsTheMeshRequires) {
  router_state::mesh(kMeshRoleController, kMeshMode5And6, 1);
  EXPECT_EQ(wifi_reload(), 0);
  EXPECT_THAT(tools_.awaited_calls(3),
              ElementsAre("uci commit wireless", "wifi reload", "wifi multi_up mld0 mld1 mld6"));
  router_state::brand(1);
  EXPECT_EQ(wifi_reload(), 0);
  EXPECT_THAT(tools_.awaited_calls(3),
              ElementsAre("uci commit wireless", "wifi reload", "wifi multi_up mld0 mld2 mld5 mld10 mld11"));
}

TEST_F(WifiReload, OfAUnitWithoutAMeshIsThatOfTheRadiosAlone) {
  router_state::mesh(kMeshRoleNone, kMeshMode5And6, 1);
  EXPECT_EQ(wifi_reload(), 0);
  EXPECT_THAT(tools_.awaited_calls(2), ElementsAre("uci commit wireless", "wifi reload"));
}

TEST_F(WifiReload, IsNoneInAModeThatTheBrandDoesNotKnow) {
  router_state::mesh(kMeshRoleAgent, 7, 1);
  EXPECT_EQ(wifi_reload(), 0);
  EXPECT_THAT(tools_.calls(), ElementsAre("uci commit wireless"));
}

TEST_F(WifiReload, DoesNothingWhereThePartInTheMeshCannotBeRead) {
  EXPECT_EQ(wifi_reload(), 0);
  EXPECT_THAT(tools_.calls(), IsEmpty());
  router_state::config("button_mesh", "config easymesh 'easymesh'\n\toption enable '1'\n\toption role 'controller'\n");
  EXPECT_EQ(wifi_reload(), 0);
  EXPECT_THAT(tools_.calls(), IsEmpty());
}

}  // namespace

// Readers of the mesh settings.
#include "unit/mesh.h"

#include <string>

#include <gtest/gtest.h>

#include "wireless/router_state.h"

namespace {

void easymesh(const std::string& enable, const std::string& role, const std::string& mode) {
  std::string text = "config easymesh 'easymesh'\n";
  if (!enable.empty()) text += "\toption enable '" + enable + "'\n";
  if (!role.empty()) text += "\toption role '" + role + "'\n";
  if (!mode.empty()) text += "\toption mode '" + mode + "'\n";
  router_state::config("button_mesh", text);
}

TEST(GetMeshRoleValue, FromEnableAndTheBeginningOfTheRole) {
  const struct {
    const char *enable, *role;
    int expected;
  } cases[] = {{"1", "controller", kMeshRoleController},
               {"1", "agent", kMeshRoleAgent},
               {"1", "controller2", kMeshRoleController},
               {"1", "agents", kMeshRoleAgent},
               {"1", "none", -7},
               {"1", "Controller", -7},
               {"0", "controller", -7},
               {"0", "agent", -7},
               {"2", "agent", -7},
               {"01", "agent", -7}};
  for (const auto& c : cases) {
    easymesh(c.enable, c.role, "1");
    int role = -7;
    EXPECT_EQ(get_mesh_role_value(role), 0);
    EXPECT_EQ(role, c.expected) << c.enable << " " << c.role;
  }
}

TEST(MeshReaders, FailAndLeaveTheResultWhenAnOptionIsMissing) {
  int out = -7;
  easymesh("", "agent", "");
  EXPECT_NE(get_mesh_role_value(out), 0);
  EXPECT_NE(get_mesh_value(out), 0);
  EXPECT_NE(get_mesh_mode_value(out), 0);
  easymesh("1", "", "1");
  EXPECT_NE(get_mesh_role_value(out), 0);
  router_state::no_config("repacd");
  EXPECT_NE(get_agent_onboarding_status(out), 0);
  router_state::no_config("button_mesh");
  EXPECT_NE(get_mesh_role_value(out), 0);
  EXPECT_NE(get_mesh_value(out), 0);
  EXPECT_NE(get_mesh_mode_value(out), 0);
  EXPECT_EQ(out, -7);
}

TEST(MeshReaders, ReadNumbers) {
  for (const char* enable : {"0", "1", "2", "x"}) {
    easymesh(enable, "none", "1");
    int mesh = -7;
    EXPECT_EQ(get_mesh_value(mesh), 0);
    EXPECT_EQ(mesh, std::string(enable) == "1" ? 1 : 0);
  }
  for (const char* mode : {"0", "1", "2", "3", "17"}) {
    easymesh("1", "none", mode);
    int out = -7;
    EXPECT_EQ(get_mesh_mode_value(out), 0);
    EXPECT_EQ(out, std::stoi(mode));
  }
  for (const int onboarded : {0, 1, 2}) {
    router_state::mesh(0, 0, onboarded);
    int out = -7;
    EXPECT_EQ(get_agent_onboarding_status(out), 0);
    EXPECT_EQ(out, onboarded);
  }
}

TEST(MeshAgent, IsToldByTheWholeRoleOrByItsBeginning) {
  const struct {
    const char *enable, *role;
    bool by_whole_role, by_prefix;
  } cases[] = {{"1", "agent", true, true},        {"1", "agents", false, true},   {"1", "Agent", false, false},
               {"1", "controller", false, false}, {"01", "agent", true, true},    {"1x", "agent", true, true},
               {"0", "agent", false, false},      {"2", "agent", false, false},   {"", "agent", false, false},
               {"1", "", false, false},           {"1000", "agent", false, false}};
  for (const auto& c : cases) {
    easymesh(c.enable, c.role, "1");
    EXPECT_EQ(unit::is_agent_by_whole_role(), c.by_whole_role) << c.enable << " " << c.role;
    EXPECT_EQ(unit::is_agent_by_role_prefix(), c.by_prefix) << c.enable << " " << c.role;
  }
  router_state::no_config("button_mesh");
  EXPECT_FALSE(unit::is_agent_by_whole_role());
  EXPECT_FALSE(unit::is_agent_by_role_prefix());
}

TEST(ReadMeshPart, TakesAnyNumberButZeroForOn) {
  const struct {
    const char *enable, *role;
    bool is_on, is_agent, is_controller;
  } cases[] = {{"1", "agent", true, true, false},      {"2", "agents", true, true, false},
               {"0", "agent", false, false, false},    {"x", "agent", false, false, false},
               {"1", "controller", true, false, true}, {"0", "controller2", false, false, true},
               {"", "controller", false, false, true}, {"1", "", true, false, false}};
  for (const auto& c : cases) {
    easymesh(c.enable, c.role, "1");
    const unit::MeshPart part = unit::read_mesh_part();
    EXPECT_EQ(part.is_on, c.is_on) << c.enable << " " << c.role;
    EXPECT_EQ(part.is_agent(), c.is_agent) << c.enable << " " << c.role;
    EXPECT_EQ(part.is_controller(), c.is_controller) << c.enable << " " << c.role;
  }
}

}  // namespace

// The operating mode, as it is stored and asked.
#include "unit/operating_mode.h"

#include <string>

#include <gtest/gtest.h>

#include "wireless/router_state.h"

namespace {

void store(const std::string& mode) {
  router_state::config("system", "config system\n\toption op_mode '" + mode + "'\n");
}

TEST(OperatingMode, AnswersOneOfItsQuestionsWithYes) {
  const struct {
    const char* text;
    bool router, access_point, repeater, client, begins_as_repeater;
  } cases[] = {{"router", true, false, false, false, false}, {"ap", false, true, false, true, false},
               {"re", false, false, true, true, true},       {"repeater", false, false, false, false, true},
               {"RE", false, false, false, false, false},    {"routers", false, false, false, false, false},
               {"", false, false, false, false, false}};
  for (const auto& c : cases) {
    const unit::OperatingMode mode{std::string(c.text)};
    EXPECT_EQ(mode.is_router(), c.router) << c.text;
    EXPECT_EQ(mode.is_access_point(), c.access_point) << c.text;
    EXPECT_EQ(mode.is_repeater(), c.repeater) << c.text;
    EXPECT_EQ(mode.is_client(), c.client) << c.text;
    EXPECT_EQ(mode.begins_as_repeater(), c.begins_as_repeater) << c.text;
  }
}

TEST(OperatingMode, IsReadAfreshAndUpToItsBound) {
  for (const char* text : {"router", "ap", "re", "something else"}) {
    store(text);
    ASSERT_TRUE(unit::operating_mode()) << text;
    EXPECT_EQ(unit::operating_mode()->text(), text);
    EXPECT_EQ(unit::operating_mode_or_none().text(), text);
  }
  store(std::string(40, 'r'));
  EXPECT_EQ(unit::operating_mode_or_none().text(), std::string(31, 'r'));
}

TEST(OperatingMode, IsNoneWithoutTheOption) {
  router_state::config("system", "config system\n");
  EXPECT_FALSE(unit::operating_mode());
  EXPECT_EQ(unit::operating_mode_or_none().text(), "");
  router_state::no_config("system");
  EXPECT_FALSE(unit::operating_mode());
}

TEST(SetOperatingMode, StoresIt) {
  store("router");
  EXPECT_TRUE(unit::set_operating_mode(unit::kRepeaterMode));
  EXPECT_TRUE(unit::operating_mode_or_none().is_repeater());
  EXPECT_TRUE(unit::set_operating_mode(unit::kAccessPointMode));
  EXPECT_TRUE(unit::operating_mode_or_none().is_access_point());
  router_state::config("system", "config other 'other'\n");
  EXPECT_FALSE(unit::set_operating_mode(unit::kRouterMode));
}

}  // namespace

// Rules that are named by their position.
#include "access/rule_list.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "platform/file.h"
#include "uci_access.h"

namespace {

constexpr const char* kFile = "/etc/config/rules";

class RuleList : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories("/etc/config");
    std::string text;
    for (const char* name : {"a", "b", "c", "d"}) {
      text += std::string("config rule\n\toption name '") + name + "'\n\nconfig other\n\n";
    }
    ASSERT_TRUE(platform::write_file(kFile, text));
  }
  void TearDown() override { std::filesystem::remove(kFile); }

  static std::string names() {
    std::string all;
    for (int index = 0; index < uci_count_sections("rules", "rule"); ++index) {
      all += uci_read_or("rules", position_of("rule", index).c_str(), "name", 8, "?");
    }
    return all;
  }
};

json::JsonPtr parse(const char* text) { return json::parse(text); }

TEST_F(RuleList, IdsAreReadAsTheirTextSays) {
  const std::vector<int> expected{2, 0, 7, 0, -1};
  EXPECT_EQ(read_ids(parse(R"([{"id":2},{"id":"0"},{"id":"7x"},{"id":"x"},{"id":-1}])").get(), 5), expected);
  EXPECT_EQ(read_ids(parse("[]").get(), 5), std::vector<int>{});
}

TEST_F(RuleList, AMissingIdAndTooManyAreRefused) {
  for (const char* text : {"[{}]", "[null]", R"([{"id":null}])", R"([{"id":1},{}])", "[1]", R"([{"id":1},{"id":2}])"}) {
    EXPECT_EQ(read_ids(parse(text).get(), 1), std::nullopt) << text;
  }
}

TEST_F(RuleList, PositionsAreDeletedFromTheLastOneOn) {
  EXPECT_TRUE(delete_positions("rules", "rule", {0, 2, 1}));
  EXPECT_EQ(names(), "d");
}

TEST_F(RuleList, AnUnknownPositionEndsTheDeletingBeforeTheOthers) {
  EXPECT_FALSE(delete_positions("rules", "rule", {1, 9}));
  EXPECT_EQ(names(), "abcd");
}

TEST_F(RuleList, ARepeatedPositionDeletesItsFollower) {
  EXPECT_TRUE(delete_positions("rules", "rule", {1, 1}));
  EXPECT_EQ(names(), "ad");
}

TEST_F(RuleList, DeletingAllLeavesTheOtherTypes) {
  EXPECT_TRUE(delete_all("/etc/config", "rules", "rule"));
  EXPECT_EQ(names(), "");
  EXPECT_EQ(uci_count_sections("rules", "other"), 4);
  EXPECT_TRUE(delete_all("/etc/config", "rules", "rule"));
}

TEST_F(RuleList, AMissingPackageIsAFailure) { EXPECT_FALSE(delete_all("/etc/config", "nosuch", "rule")); }

}  // namespace

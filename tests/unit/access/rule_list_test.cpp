// Rules that are named by their position.
#include "access/rule_list.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "platform/file.h"
#include "uci_section.h"

namespace {

constexpr const char* kFile = "/etc/config/rules";
constexpr RuleList kRules{.key = "list", .package = "rules", .type = "rule", .most_ids = 3};

class RuleListTest : public testing::Test {
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
    for (int index = 0; index < uci::count("rules", "rule"); ++index) {
      all += uci::Section("rules", uci::position("rule", index)).read_or("name", 8, "?");
    }
    return all;
  }
};

std::optional<std::vector<int>> ids_of(const std::string& elements, std::size_t most = 5) {
  const json::Document document((R"({"list":[)" + elements + "]}").c_str());
  return read_ids(document->list("list"), most);
}

TEST_F(RuleListTest, IdsAreReadAsTheirTextSays) {
  const std::vector<int> expected{2, 0, 7, 7, 12};
  EXPECT_EQ(ids_of(R"({"id":2},{"id":"0"},{"id":"7x"},{"id":"7 "},{"id":"012"})"), expected);
  EXPECT_EQ(ids_of(R"({"id":1.0},{"id":1.5},{"id":1e1},{"id":"1e1"})"), (std::vector<int>{1, 1, 10, 1}));
  EXPECT_EQ(ids_of(R"({"id":2147483646},{"id":"2147483646"})"), (std::vector<int>{2147483646, 2147483646}));
  EXPECT_EQ(ids_of(""), std::vector<int>{});
}

TEST_F(RuleListTest, WhatIsNoPositionIsRefused) {
  for (const char* id :
       {"null", "[]", "[1]", "{}", "true", "false", "-1", "\"-1\"", "\"\"", "\"x\"", "\" 1\"", "\"+1\"", "-0.5",
        "2147483648", "\"2147483648\"", "99999999999999999999", "\"99999999999999999999x\"", "1e300", "4294967296"}) {
    EXPECT_EQ(ids_of(std::string(R"({"id":)") + id + "}"), std::nullopt) << id;
    EXPECT_EQ(ids_of(std::string(R"({"id":1},{"id":)") + id + "}"), std::nullopt) << id;
  }
}

TEST_F(RuleListTest, AMissingIdAndTooManyAreRefused) {
  for (const char* elements : {"{}", "null", "1", "[]", "\"1\"", R"({"id":1},{})"}) {
    EXPECT_EQ(ids_of(elements), std::nullopt) << elements;
  }
  EXPECT_EQ(ids_of(R"({"id":1},{"id":1})", 1), std::nullopt);
}

TEST_F(RuleListTest, PositionsAreDeletedFromTheLastOneOn) {
  EXPECT_TRUE(delete_positions(kRules, {0, 2, 1}));
  EXPECT_EQ(names(), "d");
}

TEST_F(RuleListTest, AnUnknownPositionEndsTheDeletingBeforeTheOthers) {
  EXPECT_FALSE(delete_positions(kRules, {1, 9}));
  EXPECT_EQ(names(), "abcd");
}

TEST_F(RuleListTest, ARepeatedPositionDeletesOneSection) {
  EXPECT_TRUE(delete_positions(kRules, {1, 3, 1}));
  EXPECT_EQ(names(), "ac");
}

TEST_F(RuleListTest, WhatARequestListsIsDeleted) {
  EXPECT_TRUE(delete_listed(R"({"list":[{"id":3},{"id":"0"}]})", kRules));
  EXPECT_EQ(names(), "bc");
  EXPECT_TRUE(delete_listed(R"({"list":[]})", kRules));
  EXPECT_EQ(names(), "bc");
}

TEST_F(RuleListTest, ARequestWithoutAListOrWithTooManyIdsDeletesNothing) {
  for (const char* body : {"", "5", "{}", R"({"list":null})", R"({"list":{"id":0}})", R"({"other":[{"id":0}]})",
                           R"({"list":[{"id":"x"}]})", R"({"list":[{"id":0},{"id":1},{"id":2},{"id":3}]})"}) {
    EXPECT_FALSE(delete_listed(body, kRules)) << body;
  }
  EXPECT_FALSE(delete_listed(nullptr, kRules));
  EXPECT_EQ(names(), "abcd");
}

TEST_F(RuleListTest, DeletingAllLeavesTheOtherTypes) {
  EXPECT_TRUE(delete_all(kRules));
  EXPECT_EQ(names(), "");
  EXPECT_EQ(uci::count("rules", "other"), 4);
  EXPECT_TRUE(delete_all(kRules));
}

TEST_F(RuleListTest, AMissingPackageIsAFailure) {
  EXPECT_FALSE(delete_all({.key = "list", .package = "nosuch", .type = "rule", .most_ids = 5}));
}

}  // namespace

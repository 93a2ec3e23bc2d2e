// Members in the order in which they were first set.
#include "repeater/ordered_members.h"

#include <gtest/gtest.h>

namespace {

TEST(OrderedMembers, KeepTheirFirstPlaceAndTheirLastValue) {
  OrderedMembers members;
  members.set("b", 1);
  members.set("a", "text");
  members.set("c", "");
  members.set("b", "later");
  members.set("a", 7);
  EXPECT_EQ(members.text().text(), R"({ "b": "later", "a": 7, "c": "" })");
}

TEST(OrderedMembers, KnowTheirKeys) {
  OrderedMembers members;
  EXPECT_EQ(members.text().text(), "{ }");
  EXPECT_FALSE(members.has("a"));
  members.set("a", 0);
  EXPECT_TRUE(members.has("a"));
  EXPECT_FALSE(members.has("A"));
  EXPECT_FALSE(members.has(""));
}

}  // namespace

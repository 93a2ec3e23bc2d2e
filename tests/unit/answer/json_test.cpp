// Owning JSON values: parsing, reading of members, building.
#include "answer/json.h"

#include <gtest/gtest.h>

namespace {

TEST(JsonParse, TellsObjectsFromOtherValues) {
  EXPECT_TRUE(json::parse_object(R"({"a": 1})"));
  for (const char* text : {"", "[1]", "12", "\"text\"", "null", "{", R"({"a": )", "not json"}) {
    EXPECT_FALSE(json::parse_object(text)) << text;
  }
  EXPECT_FALSE(json::parse_object(nullptr));
}

TEST(JsonParse, RefusesDeepNestingInsteadOfOverflowing) { EXPECT_FALSE(json::parse(std::string(100000, '[').c_str())); }

TEST(JsonMembers, AreConvertedAsJsonCDoes) {
  const json::JsonPtr object = json::parse_object(R"({"i": 7, "t": "12", "b": true, "n": null, "o": {"x": 1}})");
  EXPECT_EQ(json::int_member(object.get(), "i"), 7);
  EXPECT_EQ(json::int_member(object.get(), "t"), 12);
  EXPECT_EQ(json::int_member(object.get(), "b"), 1);
  EXPECT_EQ(json::int_member(object.get(), "n"), 0);
  EXPECT_EQ(json::int_member(object.get(), "missing"), std::nullopt);
  EXPECT_EQ(json::text_member(object.get(), "t"), "12");
  EXPECT_EQ(json::text_member(object.get(), "i"), "7");
  EXPECT_EQ(json::text_member(object.get(), "n"), "");
  EXPECT_EQ(json::text_member(object.get(), "missing"), std::nullopt);
}

TEST(JsonMembers, OfSomethingThatIsNoObjectAreMissing) {
  const json::JsonPtr array = json::parse("[1, 2]");
  EXPECT_FALSE(json::has_member(array.get(), "a"));
  EXPECT_EQ(json::int_member(array.get(), "a"), std::nullopt);
  EXPECT_EQ(json::member(nullptr, "a"), nullptr);
}

TEST(JsonMembers, ArrayMemberIsNullForOtherTypes) {
  const json::JsonPtr object = json::parse_object(R"({"list": [1], "text": "x"})");
  EXPECT_NE(json::array_member(object.get(), "list"), nullptr);
  EXPECT_EQ(json::array_member(object.get(), "text"), nullptr);
  EXPECT_EQ(json::array_member(object.get(), "none"), nullptr);
}

TEST(JsonBuild, KeepsTheOrderAndSpacesTheText) {
  const json::JsonPtr object = json::new_object();
  json::add(object.get(), "result", 0);
  json::add(object.get(), "name", std::string_view("it's \"x\"/%n"));
  json::add(object.get(), "none", static_cast<const char*>(nullptr));
  json::JsonPtr list = json::new_array();
  json::append(list.get(), json::int_value(1));
  json::append(list.get(), json::text_value("two"));
  json::add(object.get(), "list", std::move(list));
  EXPECT_EQ(json::to_text(object.get()),
            R"({ "result": 0, "name": "it's \"x\"\/%n", "none": null, "list": [ 1, "two" ] })");
}

}  // namespace

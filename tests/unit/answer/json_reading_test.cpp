// The one rule for documents and members.
#include "answer/json_reading.h"

#include <climits>
#include <new>

#include <gtest/gtest.h>
#include <json-c/json.h>

namespace {

int reading_without_room = 0;  // the reading of a text, from 1, that finds no memory for the member "a"
int readings = 0;

}  // namespace

extern "C" {
json_object* __real_json_tokener_parse(const char* text);
json_object* __wrap_json_tokener_parse(const char* text);

json_object* __wrap_json_tokener_parse(const char* text) {
  json_object* value = __real_json_tokener_parse(text);
  if (++readings == reading_without_room) json_object_object_del(value, "a");
  return value;
}
}

namespace {

using json::Document;

TEST(Document, OfWhichAMemberFoundNoMemoryIsNone) {
  for (const int reading : {1, 2}) {
    reading_without_room = reading;
    readings = 0;
    EXPECT_THROW(Document(R"({"a": 1, "b": [2]})"), std::bad_alloc) << reading;
  }
  reading_without_room = 0;
}

TEST(Document, OfWhatIsNotEqualToItselfIsOne) {
  const Document document(R"({"n": NaN, "b": 2})");
  EXPECT_EQ(document->number("b"), 2);
}

TEST(Document, IsAnObjectOrNone) {
  EXPECT_TRUE(Document(R"({"a": 1})"));
  EXPECT_TRUE(Document("{}"));
  for (const char* text : {"", "[1]", "[{}]", "12", "\"text\"", "null", "true", "{", R"({"a": )", "not json"}) {
    EXPECT_FALSE(Document(text)) << text;
  }
  EXPECT_FALSE(Document(nullptr));
}

TEST(Document, TellsJsonThatIsNoObjectFromTextThatIsNone) {
  for (const char* text : {"{}", "[]", "[1]", "12", "\"text\"", "true"}) EXPECT_TRUE(Document(text).is_json()) << text;
  for (const char* text : {"", "null", "{", "[", "not json"}) EXPECT_FALSE(Document(text).is_json()) << text;
  EXPECT_FALSE(Document(nullptr).is_json());
  EXPECT_EQ(Document("[1]")->number("n"), std::nullopt);
}

TEST(Document, RefusesDeepNestingInsteadOfOverflowing) {
  EXPECT_FALSE(Document(("{\"a\":" + std::string(100000, '[')).c_str()));
}

TEST(Number, IsAnIntegerAWholeFractionABooleanOrADecimalText) {
  struct Row {
    const char* value;
    int expected;
  };
  for (const Row& row : {Row{"7", 7}, Row{"-7", -7}, Row{"1.0", 1}, Row{"-0.0", 0}, Row{"2e2", 200}, Row{"true", 1},
                         Row{"false", 0}, Row{"\"12\"", 12}, Row{"\"-3\"", -3}, Row{"\"007\"", 7},
                         Row{"99999999999", INT_MAX}, Row{"-99999999999", INT_MIN}, Row{"1e300", INT_MAX},
                         Row{"18446744073709551615", INT_MAX}, Row{"\"99999999999\"", INT_MAX}}) {
    const Document document((std::string("{\"n\": ") + row.value + "}").c_str());
    EXPECT_EQ(document->number("n"), row.expected) << row.value;
    EXPECT_TRUE(document->has("n")) << row.value;
  }
}

TEST(Number, IsMissingOtherwise) {
  for (const char* value : {"null", "\"\"", "\"abc\"", "\"1 \"", "\" 1\"", "\"1.0\"", "\"0x1\"", "1.5", "[]", "[1]",
                            "{}", "{\"n\": 1}", "\"1\\u0000\"", "NaN", "Infinity"}) {
    const Document document((std::string("{\"n\": ") + value + "}").c_str());
    EXPECT_EQ(document->number("n"), std::nullopt) << value;
  }
  EXPECT_EQ(Document("{}")->number("n"), std::nullopt);
}

TEST(Text, IsATextOrANumbersText) {
  const Document document(R"({"t": "12 a", "e": "", "i": 12, "d": 1.5, "z": "cut\u0000here"})");
  EXPECT_EQ(document->text("t"), "12 a");
  EXPECT_EQ(document->text("e"), "");
  EXPECT_EQ(document->text("i"), "12");
  EXPECT_EQ(document->text("d"), "1.5");
  EXPECT_EQ(document->text("z"), "cut");
}

TEST(Text, IsMissingOtherwise) {
  for (const char* value : {"null", "true", "false", "[]", "[\"a\"]", "{}", "{\"t\": \"a\"}"}) {
    const Document document((std::string("{\"t\": ") + value + "}").c_str());
    EXPECT_EQ(document->text("t"), std::nullopt) << value;
  }
  EXPECT_EQ(Document("{}")->text("t"), std::nullopt);
}

TEST(Flag, IsZeroOrOneInAnyForm) {
  for (const char* value : {"0", "false", "\"0\"", "0.0"}) {
    EXPECT_EQ(Document((std::string("{\"f\": ") + value + "}").c_str())->flag("f"), false) << value;
  }
  for (const char* value : {"1", "true", "\"1\"", "1.0"}) {
    EXPECT_EQ(Document((std::string("{\"f\": ") + value + "}").c_str())->flag("f"), true) << value;
  }
  for (const char* value : {"2", "-1", "\"on\"", "\"\"", "null", "[]", "{}"}) {
    EXPECT_EQ(Document((std::string("{\"f\": ") + value + "}").c_str())->flag("f"), std::nullopt) << value;
  }
}

TEST(Members, AreFoundByTheirKind) {
  const Document document(R"({"n": null, "o": {"x": 1}, "l": [{"a": 1}, {"a": 2}], "t": "x"})");
  EXPECT_EQ(document->object("o").number("x"), 1);
  EXPECT_FALSE(document->object("l"));
  EXPECT_FALSE(document->object("missing"));
  EXPECT_EQ(document->object("missing").number("x"), std::nullopt);
  EXPECT_FALSE(document->list("o"));
  EXPECT_FALSE(document->list("n"));
  EXPECT_FALSE(document->has("n"));
  EXPECT_FALSE(document->has("o"));
  EXPECT_FALSE(document->has("l"));
  EXPECT_FALSE(document->has_any("n"));
  EXPECT_TRUE(document->has_any("o"));
  EXPECT_TRUE(document->has("t"));
  int sum = 0;
  for (const json::Object element : document->list("l")) sum += element.number("a").value_or(0);
  EXPECT_EQ(sum, 3);
}

TEST(List, TellsWhetherItHoldsObjectsAlone) {
  EXPECT_TRUE(Document(R"({"l": []})")->list("l").holds_objects_alone());
  EXPECT_TRUE(Document(R"({"l": [{}, {"a": 1}]})")->list("l").holds_objects_alone());
  for (const char* list : {"[null]", "[1]", "[{}, \"x\"]", "[[]]"}) {
    const Document document((std::string("{\"l\": ") + list + "}").c_str());
    EXPECT_FALSE(document->list("l").holds_objects_alone()) << list;
  }
}

TEST(Document, MayBeMoved) {
  Document first(R"({"a": 1})");
  const Document second = std::move(first);
  EXPECT_EQ(second->number("a"), 1);
}

}  // namespace

// Texts of answers, held against what json-c writes for the same tree.
#include "answer/json_text.h"

#include <gtest/gtest.h>
#include <json-c/json.h>

namespace {

using json::ListText;
using json::ObjectText;

// json-c's text of the document that `text` is.
std::string as_json_c(const std::string& text) {
  json_object* value = json_tokener_parse(text.c_str());
  std::string written = json_object_to_json_string(value);
  json_object_put(value);
  return written;
}

TEST(ObjectText, IsSpacedAsJsonCDoes) {
  ObjectText document;
  document.add("result", 0).add("name", "it's \"x\"/%n\n\x01").add("none", static_cast<const char*>(nullptr));
  document.add("big", std::int64_t{1} << 40).add("empty", ObjectText()).add("list", ListText().add(1).add("two"));
  document.add("nested", ListText().add(ObjectText().add("a", std::string("b"))).add(ObjectText()));
  document.add("nothing", ListText());
  const std::string text = std::move(document).text();
  EXPECT_EQ(text, as_json_c(text));
  EXPECT_EQ(text.substr(0, 40), R"({ "result": 0, "name": "it's \"x\"\/%n\n)");
  EXPECT_EQ(ObjectText().text(), "{ }");
  EXPECT_EQ(ListText().text(), "[ ]");
}

TEST(ObjectText, QuotesEveryByteAsJsonCDoes) {
  for (int byte = 0; byte < 128; ++byte) {
    const std::string text = std::string("a") + static_cast<char>(byte) + "z";
    json_object* value = json_object_new_string_len(text.data(), static_cast<int>(text.size()));
    EXPECT_EQ(json::quoted(text), json_object_to_json_string(value)) << byte;
    json_object_put(value);
  }
}

TEST(ObjectText, TakesAListOfAnyLengthBehindWhatItHolds) {
  for (const std::size_t length : {0UL, 1UL, 5UL, 1000UL}) {
    ListText list;
    std::string expected;
    for (std::size_t count = 0; count < length; ++count) expected += (count == 0 ? "1" : ", 1");
    for (std::size_t count = 0; count < length; ++count) list.add(1);
    ObjectText document;
    document.add("before", std::string(100, 'b')).add("list", std::move(list)).add("after", 2);
    EXPECT_EQ(document.text(), "{ \"before\": \"" + std::string(100, 'b') + "\", \"list\": [ " + expected +
                                   (length == 0 ? "" : " ") + "], \"after\": 2 }");
  }
}

TEST(ObjectText, WritesAListWhereItStays) {
  for (const bool is_roomy : {false, true}) {
    ObjectText document;
    if (is_roomy) document.reserve(1000);
    document.add("before", 1).add_list("none", [](ListText&) {});
    document.add_list("list", [](ListText& list) {
      list.add(ObjectText().add("a", 1).add_list("inner", [](ListText& inner) { inner.add(1).add("two"); })).add(3);
    });
    EXPECT_EQ(document.add("after", 2).text(),
              "{ \"before\": 1, \"none\": [ ], \"list\": "
              "[ { \"a\": 1, \"inner\": [ 1, \"two\" ] }, 3 ], \"after\": 2 }");
  }
}

TEST(ObjectText, IsAlwaysValidUtf8) {
  EXPECT_EQ(ObjectText().add("ssid", std::string_view("caf\xE9 \xC3\xA9")).text(),
            "{ \"ssid\": \"caf\xEF\xBF\xBD \xC3\xA9\" }");
}

TEST(ObjectText, KeepsNulCharacters) {
  EXPECT_EQ(ObjectText().add("t", std::string_view("a\0b", 3)).text(), R"({ "t": "a\u0000b" })");
}

TEST(Pretty, IsWhatJsonCWrites) {
  EXPECT_EQ(json::pretty(R"({ "a": 1, "b": [ 1 ] })"), "{\n  \"a\":1,\n  \"b\":[\n    1\n  ]\n}");
  for (const char* text :
       {"{ }", "[ ]", R"({ "a": { }, "b": [ ], "c": [ { }, [ 1, -2 ], null ] })",
        R"({ "{ [ , : \" ": "x \/ \" } ] \\\\", "b": "\\\\" })", R"([ "", "日本", { "a": [ [ ] ] } ])"}) {
    json_object* value = json_tokener_parse(text);
    ASSERT_NE(value, nullptr) << text;
    EXPECT_EQ(json::pretty(text), json_object_to_json_string_ext(value, JSON_C_TO_STRING_PRETTY));
    EXPECT_EQ(json::pretty_size(text), json::pretty(text).size());
    json_object_put(value);
  }
}

TEST(ResultText, HoldsTheResultAlone) { EXPECT_EQ(json::result_text(2).text(), R"({ "result": 2 })"); }

TEST(SuccessText, GoesOnWithWhatIsTold) {
  EXPECT_EQ(json::success_text().add("enable", 1).text(), R"({ "result": 0, "version": 1, "enable": 1 })");
}

}  // namespace

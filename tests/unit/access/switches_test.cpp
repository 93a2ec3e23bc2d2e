// Switches in requests and packages.
#include "access/switches.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "platform/file.h"

namespace {

constexpr const char* kFile = "/etc/config/switches";

TEST(ReadSwitch, TakesZeroAndOneAlone) {
  struct Row {
    const char* text;
    std::optional<int> value;
  };
  const Row rows[] = {{R"({"on":0})", 0},
                      {R"({"on":1})", 1},
                      {R"({"on":"1"})", 1},
                      {R"({"on":"0"})", 0},
                      {R"({"on":true})", 1},
                      {R"({"on":false})", 0},
                      {R"({"on":"x"})", std::nullopt},
                      {R"({"on":"1x"})", std::nullopt},
                      {R"({"on":""})", std::nullopt},
                      {R"({"on":0.5})", std::nullopt},
                      {R"({"on":2})", std::nullopt},
                      {R"({"on":-1})", std::nullopt},
                      {R"({"on":4294967297})", std::nullopt},
                      {R"({"on":null})", std::nullopt},
                      {R"({"on":[1]})", std::nullopt},
                      {R"({"on":{}})", std::nullopt},
                      {R"({})", std::nullopt},
                      {"1", std::nullopt},
                      {"", std::nullopt}};
  for (const Row& row : rows) EXPECT_EQ(read_switch(json::parse(row.text), "on"), row.value) << row.text;
}

TEST(StoredSwitch, TakesZeroAndOneAlone) {
  std::filesystem::create_directories("/etc/config");
  ASSERT_TRUE(platform::write_file(
      kFile,
      "config switches 's'\n\toption off '0'\n\toption on '1'\n\toption two '2'\n\toption x 'x'\n\tlist many '1'\n"));
  const auto option = [](const char* name) { return SwitchOption{"on", "switches", "s", name}; };
  EXPECT_EQ(stored_switch(option("off")), 0);
  EXPECT_EQ(stored_switch(option("on")), 1);
  for (const char* name : {"two", "x", "many", "nosuch"}) {
    EXPECT_EQ(stored_switch(option(name)), std::nullopt) << name;
  }
  EXPECT_TRUE(set_switch(option("two"), 0));
  EXPECT_EQ(stored_switch(option("two")), 0);
  EXPECT_FALSE(set_switch({"on", "switches", "nosuch", "two"}, 0));
  std::filesystem::remove(kFile);
}

TEST(ApplySwitch, TellsAWrongSwitchFromOneThatCannotBeStored) {
  std::filesystem::create_directories("/etc/config");
  ASSERT_TRUE(platform::write_file(kFile, "config switches 's'\n\toption on '0'\n"));
  const SwitchOption on{"on", "switches", "s", "on"};
  EXPECT_EQ(apply_switch(json::parse(R"({"on":1})"), on), 0);
  EXPECT_EQ(stored_switch(on), 1);
  EXPECT_EQ(apply_switch(json::parse(R"({"on":2})"), on), 1);
  EXPECT_EQ(apply_switch(json::parse("{}"), on), 1);
  EXPECT_EQ(stored_switch(on), 1);
  std::filesystem::remove(kFile);
  EXPECT_EQ(apply_switch(json::parse(R"({"on":1})"), on), 2);
}

TEST(CountLines, ReadsANumberOfAnyLength) {
  EXPECT_EQ(count_lines("echo 3"), 3);
  EXPECT_EQ(count_lines("echo 0"), 0);
  EXPECT_EQ(count_lines("echo 12345678"), 12345678);
  EXPECT_EQ(count_lines("true"), 0);
}

}  // namespace

// Switches in requests and packages.
#include "access/switches.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "platform/file.h"
#include "uci_access.h"

namespace {

constexpr const char* kFile = "/etc/config/switches";

TEST(StoredSwitch, TakesZeroAndOneAlone) {
  std::filesystem::create_directories("/etc/config");
  ASSERT_TRUE(platform::write_file(
      kFile,
      "config switches 's'\n\toption off '0'\n\toption on '1'\n\toption two '2'\n\toption x 'x'\n\tlist many '1'\n"));
  const auto option = [](const char* name) { return SwitchOption{"on", "switches", "s", name}; };
  EXPECT_EQ(stored_switch(option("off")), false);
  EXPECT_EQ(stored_switch(option("on")), true);
  for (const char* name : {"two", "x", "many", "nosuch"}) {
    EXPECT_EQ(stored_switch(option(name)), std::nullopt) << name;
  }
  EXPECT_TRUE(set_switch(option("two"), false));
  EXPECT_EQ(stored_switch(option("two")), false);
  EXPECT_FALSE(set_switch({"on", "switches", "nosuch", "two"}, false));
  std::filesystem::remove(kFile);
}

using answers::Result;

Result apply(const char* body, const SwitchOption& which) { return apply_switch(json::Document(body).root(), which); }

TEST(ApplySwitch, TakesZeroAndOneAlone) {
  std::filesystem::create_directories("/etc/config");
  ASSERT_TRUE(platform::write_file(kFile, "config switches 's'\n\toption on '7'\n"));
  const SwitchOption on{"on", "switches", "s", "on"};
  for (const char* body : {R"({"on":"x"})", R"({"on":"1x"})", R"({"on":"1 "})", R"({"on":""})", R"({"on":0.5})",
                           R"({"on":2})", R"({"on":-1})", R"({"on":4294967297})", R"({"on":null})", R"({"on":[1]})",
                           R"({"on":{}})", "{}", "1", "", "[]"}) {
    EXPECT_EQ(apply(body, on), Result::kUnusable) << body;
    EXPECT_EQ(uci_read("switches", "s", "on", 8), "7") << body;
  }
  for (const char* body : {R"({"on":1})", R"({"on":"1"})", R"({"on":true})", R"({"on":1.0})"}) {
    set_switch(on, false);
    EXPECT_EQ(apply(body, on), Result::kOk) << body;
    EXPECT_EQ(stored_switch(on), true) << body;
  }
  for (const char* body : {R"({"on":0})", R"({"on":"0"})", R"({"on":false})", R"({"on":0.0})"}) {
    set_switch(on, true);
    EXPECT_EQ(apply(body, on), Result::kOk) << body;
    EXPECT_EQ(stored_switch(on), false) << body;
  }
  std::filesystem::remove(kFile);
}

TEST(ApplySwitch, TellsAWrongSwitchFromOneThatCannotBeStored) {
  std::filesystem::remove(kFile);
  const SwitchOption on{"on", "switches", "s", "on"};
  EXPECT_EQ(apply(R"({"on":1})", on), Result::kFailed);
  EXPECT_EQ(apply(R"({"on":2})", on), Result::kUnusable);
}

TEST(ReadCount, ReadsANumberOfAnyLength) {
  EXPECT_EQ(read_count("echo 3"), 3);
  EXPECT_EQ(read_count("echo 0"), 0);
  EXPECT_EQ(read_count("echo 12345678"), 12345678);
  EXPECT_EQ(read_count("true"), 0);
}

}  // namespace

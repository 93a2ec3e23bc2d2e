// Shell, file and device helpers with their result conventions.
#include "system_helpers.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "platform/file.h"

namespace {

class TestFolder : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { std::filesystem::remove_all(folder_); }
  std::string file(const std::string& content) {
    const std::string path = folder_ + "/file";
    EXPECT_TRUE(platform::write_file(path.c_str(), content));
    return path;
  }
  std::string folder_ = "/tmp/system_helpers_test";
};
using ReadValueFromFile = TestFolder;
using ReadStrvalueFromFile = TestFolder;

// A tool of the test's own, found before any other of its name.
class TestTool : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { setenv("PATH", path_.c_str(), 1); }
  void provide(const std::string& name, const std::string& script) {
    const std::string path = folder_ + "/" + name;
    ASSERT_TRUE(platform::write_file(path.c_str(), "#!/bin/sh\n" + script));
    chmod(path.c_str(), 0755);
    setenv("PATH", (folder_ + ":" + path_).c_str(), 1);
  }
  std::string folder_ = "/tmp/test_tools";
  std::string path_ = getenv("PATH");
};
using GetLinkBssid = TestTool;
using GetUciOptionValue = TestTool;
using SetUciOptionValue = TestTool;

TEST(OsSystem, AnswersOneForStatusZero) {
  EXPECT_EQ(os_system("true"), 1);
  EXPECT_EQ(os_system("false"), 0);
  EXPECT_EQ(os_system(""), 0);
  EXPECT_EQ(os_system("kill -9 $$"), 0);
}

TEST(OsExec, AnswersOneForStatusZeroAndParsesNothing) {
  EXPECT_EQ(os_exec({"test", "$(echo a)", "=", "$(echo a)"}), 1);
  EXPECT_EQ(os_exec({"false"}), 0);
  EXPECT_EQ(os_exec({}), 0);
  EXPECT_EQ(os_exec({"no-such-tool-anywhere"}), 0);
}

TEST(ExecuteCmd, CopiesTheFirstLineAndPads) {
  std::array<char, 8> out;
  out.fill('#');
  EXPECT_EQ(execute_cmd("printf 'ab\\r\\nsecond\\n'", out.data(), out.size()), 0);
  EXPECT_EQ(std::string(out.data(), out.size()), std::string("ab\0\0\0\0\0\0", 8));
}

TEST(ExecuteCmd, LeavesTheBufferWhenTheLineIsLongerThanIt) {
  std::array<char, 4> out{'k', 'e', 'p', 't'};
  EXPECT_EQ(execute_cmd("echo 12345", out.data(), out.size()), 0);
  EXPECT_EQ(std::string(out.data(), out.size()), "kept");
  EXPECT_EQ(execute_cmd("echo 1234", out.data(), out.size()), 0);
  EXPECT_EQ(std::string(out.data(), out.size()), "1234");
}

TEST(ExecuteCmd, LeavesTheBufferWhenNothingIsPrinted) {
  std::array<char, 4> out{'k', 'e', 'p', 0};
  EXPECT_EQ(execute_cmd("true", out.data(), out.size()), 0);
  EXPECT_STREQ(out.data(), "kep");
}

TEST(ExecuteCmd, FailsWithoutACommand) {
  std::array<char, 4> out{};
  EXPECT_EQ(execute_cmd(nullptr, out.data(), out.size()), 1);
  EXPECT_EQ(execute_cmd("", out.data(), out.size()), 1);
}

TEST_F(GetUciOptionValue, CopiesAtMost31BytesWithoutATerminator) {
  provide("uci", "[ \"$*\" = 'get network.lan.ipaddr' ] && echo 0123456789012345678901234567890123456789\n");
  std::array<char, 40> out;
  out.fill('#');
  EXPECT_EQ(get_uci_option_value("network", "lan", "ipaddr", out.data(), out.size()), 0);
  EXPECT_EQ(std::string(out.data(), 33), "0123456789012345678901234567890##");
}

TEST_F(GetUciOptionValue, OfAMissingOptionLeavesTheBuffer) {
  provide("uci", "exit 1\n");
  std::array<char, 8> out{'k', 'e', 'p', 't', 0};
  EXPECT_EQ(get_uci_option_value("network", "lan", "nope", out.data(), out.size()), 0);
  EXPECT_STREQ(out.data(), "kept");
  EXPECT_EQ(get_uci_option_value(nullptr, "lan", "nope", out.data(), out.size()), -1);
}

TEST_F(SetUciOptionValue, HandsTheValueOverAsOneArgumentAndCommits) {
  provide("uci", "for word in \"$@\"; do printf '<%s>' \"$word\"; done >> /tmp/test_tools/said\n");
  EXPECT_EQ(set_uci_option_value("wireless", "ath0", "ssid", "a b;$(c)'"), 0);
  EXPECT_EQ(del_uci_option_value("wireless", "ath0", "ssid"), 0);
  EXPECT_EQ(platform::read_file("/tmp/test_tools/said"),
            "<set><wireless.ath0.ssid=a b;$(c)'><commit><wireless><delete><wireless.ath0.ssid><commit><wireless>");
  EXPECT_EQ(set_uci_option_value("wireless", "ath0", "ssid", nullptr), -1);
  EXPECT_EQ(del_uci_option_value("wireless", "ath0", nullptr), -1);
}

TEST_F(ReadValueFromFile, ReadsOneInteger) {
  EXPECT_EQ(read_value_from_file(file(" 42 rest\n").c_str()), 42);
  EXPECT_EQ(read_value_from_file(file("-7").c_str()), -7);
  EXPECT_EQ(read_value_from_file(file("abc").c_str()), -1);
  EXPECT_EQ(read_value_from_file(file("").c_str()), -1);
  EXPECT_EQ(read_value_from_file("/tmp/system_helpers_test/none"), -1);
}

TEST_F(ReadStrvalueFromFile, ReadsOneBoundedWord) {
  EXPECT_EQ(read_strvalue_from_file(file("\n  word next\n").c_str(), 32), "word");
  EXPECT_EQ(read_strvalue_from_file(file("longer-than-that").c_str(), 7), "longer");
  EXPECT_EQ(read_strvalue_from_file(file(" \n").c_str(), 32), std::nullopt);
  EXPECT_EQ(read_strvalue_from_file("/tmp/system_helpers_test/none", 32), std::nullopt);
}

TEST_F(GetLinkBssid, TakesTheAddressBehindConnectedTo) {
  provide("iw", "cat /tmp/test_tools/link\n");
  struct Row {
    const char* output;
    const char* bssid;
  };
  for (const Row& row : {Row{"Connected to aa:bb:cc:dd:ee:0f (on ath03)\n\tSSID: x\n", "AA:BB:CC:DD:EE:0F"},
                         Row{"Connected to aa:bb:cc:dd:ee:0f(on ath03)\n", "AA:BB:CC:DD:EE:0F"},
                         Row{"Connected to aa:bb:cc (on ath03)\n", ""}, Row{"Connected to aa:bb:cc:dd:ee:0f\n", ""},
                         Row{"Not connected.\n", ""}, Row{"", ""}}) {
    ASSERT_TRUE(platform::write_file("/tmp/test_tools/link", row.output));
    EXPECT_EQ(get_link_bssid("ath03"), row.bssid) << row.output;
  }
}

TEST(TrimLineEnd, CutsAtTheFirstLineEndAndTellsTheLengthBefore) {
  struct Row {
    const char* text;
    const char* cut;
    std::size_t result;
  };
  for (const Row& row :
       {Row{"abc\r\nd", "abc", 6}, Row{"abc\nd", "abc", 5}, Row{"abc", "abc", 3}, Row{"", "", 0}, Row{"\n", "", 1}}) {
    std::string text = row.text;
    EXPECT_EQ(trim_line_end(text.data()), row.result);
    EXPECT_STREQ(text.c_str(), row.cut);
  }
}

}  // namespace

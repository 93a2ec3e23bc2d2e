// Options through the `uci` command, which gets every value as one argument.
#include <array>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "fake_tools.h"
#include "platform/file.h"
#include "system_helpers.h"

namespace {

class UciTool : public ::testing::Test {
 protected:
  FakeTools tools_;
};
using GetUciOptionValue = UciTool;
using SetUciOptionValue = UciTool;

TEST_F(GetUciOptionValue, CopiesAtMost31BytesWithoutATerminator) {
  tools_.provide("uci", "[ \"$*\" = 'get network.lan.ipaddr' ] && echo 0123456789012345678901234567890123456789\n");
  std::array<char, 40> out;
  out.fill('#');
  EXPECT_EQ(get_uci_option_value("network", "lan", "ipaddr", out.data(), out.size()), 0);
  EXPECT_EQ(std::string(out.data(), 33), "0123456789012345678901234567890##");
}

TEST_F(GetUciOptionValue, OfAMissingOptionLeavesTheBuffer) {
  tools_.provide("uci", "exit 1\n");
  std::array<char, 8> out{'k', 'e', 'p', 't', 0};
  EXPECT_EQ(get_uci_option_value("network", "lan", "nope", out.data(), out.size()), 0);
  EXPECT_STREQ(out.data(), "kept");
  EXPECT_EQ(get_uci_option_value(nullptr, "lan", "nope", out.data(), out.size()), -1);
}

TEST_F(SetUciOptionValue, HandsTheValueOverAsOneArgumentAndCommits) {
  tools_.provide("uci", "for word in \"$@\"; do printf '<%s>' \"$word\"; done >> /tmp/uci_options_test\n");
  EXPECT_EQ(set_uci_option_value("wireless", "ath0", "ssid", "a b;$(c)'"), 0);
  EXPECT_EQ(del_uci_option_value("wireless", "ath0", "ssid"), 0);
  EXPECT_EQ(platform::read_file("/tmp/uci_options_test"),
            "<set><wireless.ath0.ssid=a b;$(c)'><commit><wireless><delete><wireless.ath0.ssid><commit><wireless>");
  std::filesystem::remove("/tmp/uci_options_test");
  EXPECT_EQ(set_uci_option_value("wireless", "ath0", "ssid", nullptr), -1);
  EXPECT_EQ(del_uci_option_value("wireless", "ath0", nullptr), -1);
}

}  // namespace

// What the UCI wrappers and the system's helpers log, with its priority: the router's log tools filter by both.
#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "captured_log.h"
#include "platform/file.h"
#include "platform/startup.h"
#include "system_helpers.h"
#include "uci_access.h"

namespace {

using Entries = std::vector<LogEntry>;

class Messages : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(dir_);
    ASSERT_TRUE(platform::write_file((dir_ + "/pkg").c_str(), "config thing 's'\n\toption o 'x'\n\tlist l 'y'\n"));
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  void expect(const char* what, int priority, const std::vector<std::string>& texts) {
    Entries expected;
    for (const std::string& text : texts) expected.push_back({priority, text});
    EXPECT_EQ(log_.entries(), expected) << what;
  }
  void expect_error(const char* what, const std::string& text) { expect(what, LOG_ERR, {text}); }
  void expect_debug(const char* what, const std::string& text) { expect(what, LOG_DEBUG, {text}); }
  const char* dir() const { return dir_.c_str(); }

  std::string dir_ = "/tmp/messages_test";
  std::array<char, 64> out_{};
  CapturedLog log_;
};

TEST_F(Messages, OfALookupThatFails) {
  UciGetOption(dir(), "nopkg", "s", "o", out_.data(), out_.size());
  expect_error("get", "uci_lookup_ptr nopkg.s.o failed.");
  UciSetOption(dir(), "nopkg", "s", "o", "value");
  expect_error("set", "uci_lookup_ptr nopkg.s.o=value failed.");
  UciAddList(dir(), "nopkg", "s", "l", "value");
  expect_error("add list", "uci_lookup_ptr nopkg.s.l=value failed.");
  UciDelList(dir(), "nopkg", "s", "l", "value");
  expect_error("del list", "uci_lookup_ptr nopkg.s.l=value failed.");
  UciDelOption(dir(), "nopkg", "s", "o");
  expect_error("del option", "uci_lookup_ptr nopkg.s.o failed.");
  UciDelSection(dir(), "nopkg", "s");
  expect_error("del section", "uci_lookup_ptr nopkg.s failed.");
  UciCheckSection(dir(), "nopkg", "s");
  expect_error("check", "uci_lookup_ptr nopkg.s failed.");
  UciCreatSection(dir(), "nopkg", "type", "name");
  expect_error("create", "uci_lookup_ptr nopkg.name=type failed.");
}

TEST_F(Messages, OfWhatIsNotThere) {
  UciGetOption(dir(), "pkg", "s", "none", out_.data(), out_.size());
  expect_error("get", "find tuple pkg.s.none failed.");
  UciGetlist(dir(), "pkg", "s", "none", out_.data(), 8, 8, nullptr);
  expect_error("list", "find tuple pkg.s.none failed.");
  UciGetlist(dir(), "pkg", "s", "o", out_.data(), 8, 8, nullptr);
  expect_error("list of an option", "find tuple o failed.");
  UciCheckSection(dir(), "pkg", "none");
  expect_error("check", "find tuple failed.");
  UciCreateAnonymousSection(dir(), "nopkg", "type");
  expect_error("anonymous", "uci_load nopkg failed.");
}

TEST_F(Messages, OfAChangeThatFails) {
  UciSetOption(dir(), "pkg", "none", "o", "value");
  expect_error("set", "uci_set pkg.none.o=value failed.");
  UciAddList(dir(), "pkg", "none", "l", "value");
  expect_error("add list", "uci_add_list pkg.none.l=value failed.");
  UciDelList(dir(), "pkg", "none", "l", "value");
  expect_error("del list", "uci_del_list pkg.none.l=value failed.");
  UciDelOption(dir(), "pkg", "s", "none");
  expect("del option", LOG_ERR, {});
  UciDelSection(dir(), "pkg", "none");
  expect("del section", LOG_ERR, {});
}

TEST_F(Messages, OfWhatSucceeds) {
  UciSetOption(dir(), "pkg", "s", "o", "%s%n");
  UciGetOption(dir(), "pkg", "s", "o", out_.data(), out_.size());
  UciAddList(dir(), "pkg", "s", "l", "z");
  UciDelList(dir(), "pkg", "s", "l", "z");
  UciCreatSection(dir(), "pkg", "type", "name");
  UciDelSection(dir(), "pkg", "name");
  os_system("true");
  expect("all of them", LOG_ERR, {});
}

TEST_F(Messages, OfOsSystemAreDebug) {
  os_system("");
  expect_debug("empty", "shell cmd is null!");
  os_system("false");
  expect_debug("status 1", "exec cmd 'false' errno=1!");
  os_system("exit 255 # %s%n");
  expect_debug("status 255", "exec cmd 'exit 255 # %s%n' errno=255!");
}

TEST_F(Messages, OfExecuteCmdAreErrors) {
  execute_cmd(nullptr, out_.data(), out_.size());
  expect_error("no command", "no cammand is passed at calling execute_cmd()\n");
  execute_cmd("echo 12345", out_.data(), 4);
  expect_error("long line", "out put buffer is not enough  to copy result  of CMD\n");
}

TEST_F(Messages, OfTheUciCommandHelpers) {
  get_uci_option_value("network", "lan", nullptr, out_.data(), out_.size());
  expect_debug("get without an option", "Parameter error!!!\n");
  get_uci_option_value("network", "lan", "ipaddr", out_.data(), out_.size());
  expect_debug("get", "buf = uci get network.lan.ipaddr\n");
  set_uci_option_value("network", "lan", "ipaddr", nullptr);
  expect_error("set", "Parameter error!!!\n");
  del_uci_option_value("network", nullptr, "ipaddr");
  expect_error("delete", "Parameter error!!!\n");
}

TEST_F(Messages, OfTheFileReadersAreErrors) {
  const std::string empty = dir_ + "/empty";
  ASSERT_TRUE(platform::write_file(empty.c_str(), ""));
  read_value_from_file("/tmp/messages_test/none");
  expect_error("value", "Failed to open file.\n");
  read_value_from_file(empty.c_str());
  expect_error("empty value", "Failed to read from file.\n");
  read_strvalue_from_file("/tmp/messages_test/none", 8);
  expect_error("word", "Failed to open file.\n");
  read_strvalue_from_file(empty.c_str(), 8);
  expect_error("empty word", "Failed to read from file.\n");
}

std::string captured(int (*ask)(char*), char* out, int expected) {
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(ask(out), expected);
  return ::testing::internal::GetCapturedStderr();
}

TEST_F(Messages, OfTheMacAddressReadersGoToStandardError) {
  std::filesystem::create_directories("/sys/class/net/dev9/link0");
  const auto ask = [](char* out) { return get_interface_macaddr("dev9", out); };
  const auto ask_link = [](char* out) { return get_mld_link_macaddr("link0", out, "dev9"); };
  const auto provide = [](const char* path, const char* text) { ASSERT_TRUE(platform::write_file(path, text)); };
  provide("/sys/class/net/dev9/address", "02:00:00:00:00:09\n");
  provide("/sys/class/net/dev9/link0/address_link0", "02:00:00:00:00:0a\nrest\n");
  EXPECT_EQ(captured(ask, out_.data(), 0), "");
  EXPECT_STREQ(out_.data(), "02:00:00:00:00:09");
  EXPECT_EQ(captured(ask_link, out_.data(), 0), "");
  EXPECT_STREQ(out_.data(), "02:00:00:00:00:0a");

  out_ = {'k', 'e', 'p', 't'};
  provide("/sys/class/net/dev9/address", "02:00:00\n");
  EXPECT_EQ(captured(ask, out_.data(), -1), "Invalid MAC address format\n");
  provide("/sys/class/net/dev9/address", "");
  EXPECT_EQ(captured(ask, out_.data(), -1).substr(0, 14), "fgets failed: ");
  std::filesystem::remove("/sys/class/net/dev9/link0/address_link0");
  EXPECT_NE(captured(ask_link, out_.data(), -1).find("fgets failed: "), std::string::npos);
  EXPECT_STREQ(out_.data(), "kept");
}

TEST(TellOfUnwritablePackages, SpeaksOnlyWhereNothingCouldBeStored) {
  CapturedLog log;
  std::filesystem::create_directories("/etc/config");
  platform::tell_of_unwritable_packages();
  EXPECT_EQ(log.texts(), std::vector<std::string>{});
  std::filesystem::rename("/etc/config", "/etc/config.away");
  platform::tell_of_unwritable_packages();
  std::filesystem::rename("/etc/config.away", "/etc/config");
  EXPECT_EQ(log.entries(),
            (Entries{{3, "user " + std::to_string(geteuid()) +
                             " cannot write /etc/config (No such file or directory): no setting will be stored\n"}}));
}

}  // namespace

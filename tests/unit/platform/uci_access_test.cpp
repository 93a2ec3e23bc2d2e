// The ten UCI wrappers, on packages in a folder of the test's own.
#include "uci_access.h"

#include <array>
#include <cstring>
#include <filesystem>
#include <new>

#include <gtest/gtest.h>
#include <uci.h>

#include "platform/file.h"
#include "platform/uci_session.h"

namespace {

bool memory_ends = false;

}  // namespace

extern "C" {
int __real_uci_add_list(uci_context* context, uci_ptr* pointer);
int __wrap_uci_add_list(uci_context* context, uci_ptr* pointer) {
  return memory_ends ? context->err = UCI_ERR_MEM : __real_uci_add_list(context, pointer);
}
}

namespace {

class UciAccess : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(dir_);
    write(
        "config thing 's'\n\toption a '0123456789012345678901234567890123456789'\n\toption b 'x'\n"
        "\tlist l '1'\n\tlist l '2'\n\tlist l '3'\n\tlist l '4'\n\tlist l '5'\n\tlist l '6'\n\nconfig system\n"
        "\toption op_mode 'router'\n");
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }
  void write(const std::string& text) { ASSERT_TRUE(platform::write_file((dir_ + "/pkg").c_str(), text)); }
  std::string content() { return platform::read_file((dir_ + "/pkg").c_str()).value_or(""); }
  std::string get(const char* section, const char* option) {
    std::array<char, 512> out{};
    return UciGetOption(dir_.c_str(), "pkg", section, option, out.data(), out.size()) == 0 ? out.data() : "(none)";
  }
  const char* dir() const { return dir_.c_str(); }
  std::string dir_ = "/tmp/uci_access_test";
};

TEST_F(UciAccess, GetCutsAValueToItsBuffer) {
  std::array<char, 33> out;
  out.fill('#');
  EXPECT_EQ(UciGetOption(dir(), "pkg", "s", "a", out.data(), out.size()), 0U);
  EXPECT_STREQ(out.data(), "01234567890123456789012345678901");
}

TEST_F(UciAccess, GetOfAMissingOptionLeavesTheBuffer) {
  std::array<char, 8> out{'k', 'e', 'p', 't', 0};
  EXPECT_EQ(UciGetOption(dir(), "pkg", "s", "nope", out.data(), out.size()), 1U);
  EXPECT_EQ(UciGetOption(dir(), "pkg", "nope", "a", out.data(), out.size()), 1U);
  EXPECT_EQ(UciGetOption(dir(), "nope", "s", "a", out.data(), out.size()), 1U);
  EXPECT_EQ(UciGetOption(dir(), "pkg", "s", "l", out.data(), out.size()), 1U);
  EXPECT_STREQ(out.data(), "kept");
}

TEST_F(UciAccess, SetReplacesCreatesAndCommits) {
  EXPECT_EQ(UciSetOption(dir(), "pkg", "s", "b", "it's $(x); \"y\"\nz"), 0U);
  EXPECT_EQ(UciSetOption(dir(), "pkg", "s", "new", "1"), 0U);
  EXPECT_EQ(get("s", "b"), "it's $(x); \"y\"\nz");
  EXPECT_NE(content().find("\toption new '1'\n"), std::string::npos);
  EXPECT_EQ(UciSetOption(dir(), "pkg", "nosection", "b", "1"), 1U);
}

TEST_F(UciAccess, AFailureForWantOfMemoryEndsTheSessionAndNoHalfOfAChangeIsStored) {
  const std::string before = content();
  memory_ends = true;
  EXPECT_THROW(
      {
        const platform::UciSession session;
        EXPECT_EQ(UciDelList(dir(), "pkg", "s", "l", "3"), 0U);
        UciAddList(dir(), "pkg", "s", "l", "3");
      },
      std::bad_alloc);
  memory_ends = false;
  EXPECT_EQ(content(), before);
  EXPECT_EQ(UciAddList(dir(), "pkg", "s", "l", "3"), 0U);
  EXPECT_NE(content(), before);
}

TEST_F(UciAccess, SetOfAnEmptyValueDeletes) {
  EXPECT_EQ(UciSetOption(dir(), "pkg", "s", "b", ""), 0U);
  EXPECT_EQ(get("s", "b"), "(none)");
}

TEST_F(UciAccess, SetCutsTheAddressAt254Bytes) {
  const std::string head = "pkg.s.b=";
  EXPECT_EQ(UciSetOption(dir(), "pkg", "s", "b", std::string(300, 'v').c_str()), 0U);
  EXPECT_EQ(get("s", "b"), std::string(kUciAddressMax - head.size(), 'v'));
}

TEST_F(UciAccess, SetCutsNoCharacterInTwo) {
  const std::string fitting(kUciAddressMax - std::strlen("pkg.s.b=") - 2, 'v');
  EXPECT_EQ(UciSetOption(dir(), "pkg", "s", "b", (fitting + "日").c_str()), 0U);
  EXPECT_EQ(get("s", "b"), fitting);
}

TEST_F(UciAccess, ListCopiesUpToTheMaximumCount) {
  std::array<std::array<char, 4>, 4> slots{};
  std::size_t count = 0;
  EXPECT_EQ(UciGetlist(dir(), "pkg", "s", "l", slots[0].data(), 4, 4, &count), 0U);
  EXPECT_EQ(count, 4U);
  for (std::size_t index = 0; index < 4; ++index) EXPECT_STREQ(slots[index].data(), std::to_string(index + 1).c_str());
}

TEST_F(UciAccess, ListOfAPlainOptionFails) {
  std::array<char, 64> slots{};
  EXPECT_EQ(UciGetlist(dir(), "pkg", "s", "b", slots.data(), 8, 8, nullptr), 1U);
  EXPECT_EQ(UciGetlist(dir(), "pkg", "s", "none", slots.data(), 8, 8, nullptr), 1U);
}

TEST_F(UciAccess, ListElementThatFillsItsSlotHasNoTerminator) {
  ASSERT_EQ(UciAddList(dir(), "pkg", "s", "wide", "abcdef"), 0U);
  ASSERT_EQ(UciAddList(dir(), "pkg", "s", "wide", "xyz"), 0U);
  std::array<char, 9> slots{};
  slots.fill('#');
  std::size_t count = 0;
  EXPECT_EQ(UciGetlist(dir(), "pkg", "s", "wide", slots.data(), 4, 2, &count), 0U);
  EXPECT_EQ(std::string(slots.data(), 9), std::string("abcdxyz\0#", 9));
}

TEST_F(UciAccess, AddListAndDelListCommit) {
  EXPECT_EQ(UciAddList(dir(), "pkg", "s", "l", "7 7"), 0U);
  EXPECT_EQ(UciDelList(dir(), "pkg", "s", "l", "3"), 0U);
  EXPECT_NE(content().find("\tlist l '2'\n\tlist l '4'\n\tlist l '5'\n\tlist l '6'\n\tlist l '7 7'\n"),
            std::string::npos);
  EXPECT_EQ(UciAddList(dir(), "pkg", "nosection", "l", "1"), 1U);
}

TEST_F(UciAccess, SectionsAreCheckedCreatedAndDeleted) {
  EXPECT_EQ(UciCheckSection(dir(), "pkg", "@system[0]"), 0U);
  EXPECT_EQ(UciCheckSection(dir(), "pkg", "@system[1]"), 1U);
  EXPECT_EQ(UciCheckSection(dir(), "pkg", "fresh"), 1U);
  EXPECT_EQ(UciCreatSection(dir(), "pkg", "kind", "fresh"), 0U);
  EXPECT_EQ(UciCheckSection(dir(), "pkg", "fresh"), 0U);
  EXPECT_NE(content().find("config kind 'fresh'\n"), std::string::npos);
  EXPECT_EQ(UciDelSection(dir(), "pkg", "fresh"), 0U);
  EXPECT_EQ(UciDelSection(dir(), "pkg", "fresh"), 1U);
}

TEST_F(UciAccess, AnonymousSectionIsTheLastOfItsType) {
  EXPECT_EQ(UciCreateAnonymousSection(dir(), "pkg", "redirect"), 0U);
  EXPECT_EQ(UciSetOption(dir(), "pkg", "@redirect[-1]", "n", "1"), 0U);
  EXPECT_EQ(UciCreateAnonymousSection(dir(), "pkg", "redirect"), 0U);
  EXPECT_EQ(UciSetOption(dir(), "pkg", "@redirect[-1]", "n", "2"), 0U);
  EXPECT_EQ(get("@redirect[0]", "n"), "1");
  EXPECT_EQ(get("@redirect[1]", "n"), "2");
  EXPECT_EQ(UciCreateAnonymousSection(dir(), "nopkg", "redirect"), 1U);
}

TEST_F(UciAccess, DelOptionOfAMissingOptionFails) {
  EXPECT_EQ(UciDelOption(dir(), "pkg", "s", "b"), 0U);
  EXPECT_EQ(UciDelOption(dir(), "pkg", "s", "b"), 1U);
}

TEST_F(UciAccess, ABrokenPackageFailsEveryCall) {
  write("config thing 's'\n\toption 'a\n");
  EXPECT_EQ(get("s", "a"), "(none)");
  EXPECT_EQ(UciSetOption(dir(), "pkg", "s", "a", "1"), 1U);
  EXPECT_EQ(content(), "config thing 's'\n\toption 'a\n");
}

TEST_F(UciAccess, MissingArgumentsFailInsteadOfCrashing) {
  std::array<char, 8> out{};
  EXPECT_EQ(UciGetOption(dir(), nullptr, nullptr, nullptr, out.data(), out.size()), 1U);
  EXPECT_EQ(UciGetOption(dir(), "pkg", "s", "b", nullptr, 0), 1U);
  EXPECT_EQ(UciCreateAnonymousSection(dir(), nullptr, "t"), 1U);
  EXPECT_EQ(UciCreateAnonymousSection(dir(), "pkg", nullptr), 1U);
}

TEST(UciRead, ReadsThePackagesOfTheSystem) {
  std::filesystem::create_directories("/etc/config");
  ASSERT_TRUE(
      platform::write_file("/etc/config/sample", "config a 's'\n\toption o 'value'\n\tlist l 'x'\n\tlist l 'yyyy'\n"));
  EXPECT_EQ(uci_read("sample", "s", "o", 4), "val");
  EXPECT_EQ(uci_read("sample", "s", "none", 4), std::nullopt);
  EXPECT_EQ(uci_read_or("sample", "s", "none", 4, "else"), "else");
  EXPECT_EQ(uci_read_list("sample", "s", "l", 3, 8), (std::vector<std::string>{"x", "yyy"}));
  EXPECT_EQ(uci_read_list("sample", "s", "o", 3, 8), std::nullopt);
}

TEST(UciRead, NeverCutsInsideACharacter) {
  EXPECT_EQ(UciSetOption(nullptr, "sample", "s", "name", "ab\u65e5\u672c"), 0U);
  const char* const expected[] = {"", "a", "ab", "ab", "ab", "ab\u65e5", "ab\u65e5", "ab\u65e5", "ab\u65e5\u672c"};
  for (std::size_t bytes = 0; bytes < std::size(expected); ++bytes) {
    EXPECT_EQ(uci_read("sample", "s", "name", bytes + 1), expected[bytes]) << bytes;
  }
  EXPECT_EQ(uci_read("sample", "s", "name", 0), std::nullopt);
  EXPECT_EQ(UciAddList(nullptr, "sample", "s", "names", "\u65e5\u672c"), 0U);
  for (const std::size_t bytes : {3U, 4U, 5U}) {
    EXPECT_EQ(uci_read_list("sample", "s", "names", bytes, 8), std::vector<std::string>{"\u65e5"});
  }
  EXPECT_EQ(uci_read_list("sample", "s", "names", 6, 8), std::vector<std::string>{"\u65e5\u672c"});
}

}  // namespace

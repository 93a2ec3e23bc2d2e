// Sections by position, read one after another.
#include "platform/section_cursor.h"

#include <array>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <uci.h>

#include "platform/file.h"
#include "platform/uci_session.h"
#include "uci_access.h"

namespace {

using platform::SectionPosition;

TEST(SectionPosition, IsAPlainTypeAndAnIndex) {
  const auto position = SectionPosition::parse("@wifi-iface[12]");
  ASSERT_TRUE(position);
  EXPECT_EQ(position->type, "wifi-iface");
  EXPECT_EQ(position->index, 12);
}

TEST(SectionPosition, OfAnythingElseIsLeftToLibuci) {
  for (const char* text : {"", "s", "@", "@t", "@t[", "@t[]", "@t[-1]", "@t[x]", "@t[1", "@t[1]x", "@[1]", "@t.u[1]",
                           "@t=u[1]", "@t[1 ]", "@t[+1]", "@t[99999999999]", "t[1]", "@t[0x1]"}) {
    EXPECT_FALSE(SectionPosition::parse(text)) << text;
  }
}

class SectionCursor : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(dir_);
    std::string text = "config other 'o'\n\n";
    for (int number = 0; number < kSections; ++number) {
      text += "config thing\n\toption a '" + std::to_string(number) + "'\n\nconfig other\n\n";
    }
    ASSERT_TRUE(platform::write_file((dir_ + "/pkg").c_str(), text));
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }
  std::string read(const std::string& section) {
    std::array<char, 64> out{};
    if (UciGetOption(dir_.c_str(), "pkg", section.c_str(), "a", out.data(), out.size()) != 0) return "(none)";
    return out.data();
  }
  std::string read(int index) { return read("@thing[" + std::to_string(index) + "]"); }

  static constexpr int kSections = 5;
  std::string dir_ = "/tmp/section_cursor_test";
};

TEST_F(SectionCursor, FindsEachInAnyOrder) {
  const platform::UciSession session;
  for (const int index : {0, 1, 1, 2, 4, 3, 0, 4}) EXPECT_EQ(read(index), std::to_string(index));
  EXPECT_EQ(read(kSections), "(none)");
  EXPECT_EQ(read(kSections - 1), std::to_string(kSections - 1));
  EXPECT_EQ(read("@other[2]"), "(none)");
  EXPECT_EQ(read("@thing[-1]"), std::to_string(kSections - 1));
}

TEST_F(SectionCursor, FollowsWhatTheSessionDeleted) {
  const platform::UciSession session;
  EXPECT_EQ(read(2), "2");
  EXPECT_EQ(UciDelSection(dir_.c_str(), "pkg", "@thing[0]"), 0U);
  EXPECT_EQ(read(2), "3");
  EXPECT_EQ(UciDelSection(dir_.c_str(), "pkg", "@thing[2]"), 0U);
  EXPECT_EQ(read(2), "4");
}

TEST_F(SectionCursor, FollowsAPackageThatWasReadAgain) {
  platform::UciSession session;
  EXPECT_EQ(read(2), "2");
  ASSERT_TRUE(
      platform::replace_file(dir_ + "/pkg", "config thing\n\n\nconfig thing\n\n\nconfig thing\n\toption a 'x'\n"));
  session.settle();  // somebody else was started, who could have done it
  EXPECT_EQ(read(2), "x");
}

TEST_F(SectionCursor, TellsPackagesApart) {
  ASSERT_TRUE(platform::write_file((dir_ + "/two").c_str(), "config thing\n\toption a 'two'\n"));
  const platform::UciSession session;
  std::string out(8, '\0');
  EXPECT_EQ(read(0), "0");
  EXPECT_EQ(UciGetOption(dir_.c_str(), "two", "@thing[0]", "a", out.data(), out.size()), 0U);
  EXPECT_STREQ(out.c_str(), "two");
  EXPECT_EQ(read(0), "0");
}

TEST_F(SectionCursor, TellsWhichSectionsThereAre) {
  const platform::UciSession session;
  EXPECT_EQ(UciCheckSection(dir_.c_str(), "pkg", "@other[5]"), 0U);
  EXPECT_EQ(UciCheckSection(dir_.c_str(), "pkg", "@other[6]"), 1U);
  EXPECT_EQ(UciCheckSection(dir_.c_str(), "pkg", "@none[0]"), 1U);
}

TEST_F(SectionCursor, GoesOnFromWhereItWas) {
  uci_context* const context = uci_alloc_context();
  uci_set_confdir(context, dir_.c_str());
  uci_package* package = nullptr;
  ASSERT_EQ(uci_load(context, "pkg", &package), UCI_OK);
  platform::SectionCursor cursor;
  uci_section* const second = cursor.find(*package, {"thing", 1});
  // A walk from the package's beginning would not come by what it met before.
  uci_list* const first = package->sections.next;
  package->sections.next = &second->e.list;
  EXPECT_STREQ(uci_lookup_option_string(context, cursor.find(*package, {"thing", 2}), "a"), "2");
  EXPECT_STREQ(uci_lookup_option_string(context, cursor.find(*package, {"thing", 4}), "a"), "4");
  package->sections.next = first;
  uci_free_context(context);
}

}  // namespace

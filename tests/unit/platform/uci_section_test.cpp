// A section's reads and changes, on the packages of the unit root.
#include "uci_section.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/file.h"

namespace {

using ::testing::ElementsAre;
using ::testing::Optional;

class SectionOfAPackage : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories("/etc/config");
    ASSERT_TRUE(platform::write_file(kPath,
                                     "\nconfig thing 's'\n\toption a '12x'\n\tlist l '1'\n\tlist l '2'\n\n"
                                     "config thing\n\toption a '3'\n\n"));
  }
  void TearDown() override { std::filesystem::remove(kPath); }
  static constexpr const char* kPath = "/etc/config/section_test";
  const uci::Section section_{"section_test", "s"};
};

TEST_F(SectionOfAPackage, IsRead) {
  EXPECT_TRUE(section_.exists());
  EXPECT_THAT(section_.read("a", 3), Optional(std::string("12")));
  EXPECT_THAT(section_.read_number("a"), Optional(12));
  EXPECT_EQ(section_.read_or("none", 8, "fallback"), "fallback");
  EXPECT_EQ(section_.read("l", 8), std::nullopt);
  EXPECT_EQ(section_.read_number("none"), std::nullopt);
  EXPECT_THAT(section_.read_list("l", 8, 8), Optional(ElementsAre("1", "2")));
  EXPECT_THAT(uci::Section("section_test", uci::position("thing", -1)).read_number("a"), Optional(3));
}

TEST_F(SectionOfAPackage, IsChanged) {
  EXPECT_TRUE(section_.set("a", "it's $(new)"));
  EXPECT_TRUE(section_.add_to_list("l", "3"));
  EXPECT_TRUE(section_.remove_from_list("l", "1"));
  EXPECT_EQ(section_.read_or("a", 32, ""), "it's $(new)");
  EXPECT_THAT(section_.read_list("l", 8, 8), Optional(ElementsAre("2", "3")));
  EXPECT_TRUE(section_.remove("a"));
  EXPECT_FALSE(section_.remove("a"));
  EXPECT_TRUE(section_.remove());
  EXPECT_FALSE(section_.exists());
  EXPECT_FALSE(section_.set("a", "1"));
  EXPECT_TRUE(section_.create("thing"));
  EXPECT_TRUE(section_.set("a", "1"));
}

TEST_F(SectionOfAPackage, IsCountedWithThoseThatAreAppended) {
  EXPECT_THAT(uci::count("section_test", "thing"), Optional(2));
  EXPECT_TRUE(uci::append("section_test", "thing"));
  EXPECT_THAT(uci::count("section_test", "thing"), Optional(3));
  EXPECT_TRUE(uci::Section("section_test", uci::position("thing", -1)).set("a", "4"));
  EXPECT_THAT(uci::Section("section_test", "@thing[2]").read_number("a"), Optional(4));
  EXPECT_THAT(uci::count("section_test", "other"), Optional(0));
}

TEST(Count, IsNoneOfAPackageThatCannotBeRead) {
  EXPECT_EQ(uci::count("no_such_package", "thing"), std::nullopt);
  EXPECT_FALSE(uci::append("no_such_package", "thing"));
}

TEST(Position, NamesASectionByItsPlace) { EXPECT_EQ(uci::position("redirect", -1), "@redirect[-1]"); }

}  // namespace

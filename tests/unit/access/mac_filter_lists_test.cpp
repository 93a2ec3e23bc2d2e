// The lists of a macfilter package.
#include "access/mac_filter_lists.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "access/mac_filter.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The two lists of the section that counts, from its lines.
mac_filter::Lists of_ath0(const std::string& lines) {
  return mac_filter::parse_lists("config wifi-iface 'ath0'\n" + lines);
}

TEST(ParseLists, ReadsBothListsOfTheFirstInterface) {
  const mac_filter::Lists lists = mac_filter::parse_lists(
      "config wifi-iface 'ath1'\n\tlist maclist 'no'\n\nconfig wifi-iface 'ath0'\n\toption macfilter 'allow'\n"
      "\tlist namelist 'Ann'\n\tlist maclist '02:00:00:00:00:01'\n\tlist namelist 'Bob'\n"
      "\tlist maclist '02:00:00:00:00:02'\n\nconfig wifi-iface 'ath2'\n\tlist maclist 'no'\n");
  EXPECT_THAT(lists.names, ElementsAre("Ann", "Bob"));
  EXPECT_THAT(lists.macs, ElementsAre("02:00:00:00:00:01", "02:00:00:00:00:02"));
}

TEST(ParseLists, GivesQuotesAndLineFeedsBack) {
  const mac_filter::Lists lists =
      of_ath0("\tlist namelist 'it'\\''s'\n\tlist namelist 'two\nlines'\n\tlist namelist ''\n\tlist maclist 'm'\n");
  EXPECT_THAT(lists.names, ElementsAre("it's", "two\nlines", ""));
  EXPECT_THAT(lists.macs, ElementsAre("m")) << "what follows a text of two lines is read";
}

TEST(ParseLists, TakesALineThatUciDidNotWriteByItsFirstAndLastQuote) {
  EXPECT_THAT(of_ath0("list namelist 'a' b 'c'\n").names, ElementsAre("a' b 'c"));
  EXPECT_THAT(of_ath0("list namelist 'open\n").names, IsEmpty());
}

TEST(ParseLists, TakesNoMoreThanTheTable) {
  std::string lines;
  for (int row = 0; row < mac_filter::kTableMax + 5; ++row) lines += "\tlist maclist '" + std::to_string(row) + "'\n";
  const mac_filter::Lists lists = of_ath0(lines);
  ASSERT_EQ(lists.macs.size(), static_cast<std::size_t>(mac_filter::kTableMax));
  EXPECT_EQ(lists.macs.back(), std::to_string(mac_filter::kTableMax - 1));
}

TEST(ParseLists, OfAnythingElseAreEmpty) {
  for (const char* text : {"", "\n", "'", "list maclist 'no section'\n", "config wifi-iface ath0\n\tlist maclist 'm'\n",
                           "config wifi-device 'ath0'\n\tlist maclist 'm'\n", "\xff\xfe%n"}) {
    const mac_filter::Lists lists = mac_filter::parse_lists(text);
    EXPECT_THAT(lists.macs, IsEmpty()) << text;
    EXPECT_THAT(lists.names, IsEmpty()) << text;
  }
}

}  // namespace

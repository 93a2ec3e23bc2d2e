// What the MAC filter's table says, for files as UCI writes them and for others.
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "access.h"
#include "access/mac_filter.h"
#include "answer/json_reading.h"
#include "answer/json_text.h"
#include "uci_access.h"
#include "wireless/router_state.h"

namespace {

using Entries = std::vector<std::pair<std::string, std::string>>;

Entries parsed(const std::string& text) {
  router_state::write("/tmp/macfilter", text);
  json::ListText table;
  int count = -1;
  EXPECT_EQ(parse_mac_filter_table("/tmp/macfilter", table, count), 0);
  const json::Document document(json::ObjectText().add("table", std::move(table)).text().c_str());
  Entries entries;
  for (const json::Object entry : document->list("table")) {
    entries.emplace_back(*entry.text("description"), *entry.text("macAddress"));
    EXPECT_EQ(entry.number("enableTime"), 0);
    EXPECT_EQ(entry.number("remainTime"), 0);
  }
  EXPECT_EQ(count, static_cast<int>(entries.size()));
  return entries;
}

// A section ath0 with these lines.
std::string ath0(const std::string& lines) { return "config wifi-iface 'ath0'\n" + lines; }

std::string repeated(const char* list, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += "\tlist " + std::string(list) + " '" + list + std::to_string(i) + "'\n";
  return text;
}

TEST(ParseMacFilterTable, PairsInTheOrderOfTheFile) {
  EXPECT_EQ(parsed(ath0("\toption macfilter 'deny'\n\tlist namelist 'One'\n\tlist namelist 'Two'\n"
                        "\tlist maclist '00:00:00:00:00:01'\n\tlist maclist_sec 'xx'\n"
                        "\tlist maclist '00:00:00:00:00:02'\n")),
            (Entries{{"One", "00:00:00:00:00:01"}, {"Two", "00:00:00:00:00:02"}}));
}

TEST(ParseMacFilterTable, TheShorterListCounts) {
  for (int names = 0; names <= 4; ++names)
    for (int macs = 0; macs <= 4; ++macs) {
      EXPECT_EQ(parsed(ath0(repeated("namelist", names) + repeated("maclist", macs))).size(),
                static_cast<std::size_t>(std::min(names, macs)));
    }
}

TEST(ParseMacFilterTable, StopsAtSixtyOfEachList) {
  const Entries entries = parsed(ath0(repeated("namelist", 61) + repeated("maclist", 100)));
  EXPECT_EQ(entries.size(), 60U);
  EXPECT_EQ(entries.back(), (std::pair<std::string, std::string>{"namelist59", "maclist59"}));
}

TEST(ParseMacFilterTable, OnlyTheSectionOfAth0) {
  const std::string lists = "\tlist namelist 'a'\n\tlist maclist 'b'\n";
  EXPECT_EQ(parsed("config macfilter 'macfilter'\n" + lists + "config wifi-iface 'ath1'\n" + lists), Entries());
  EXPECT_EQ(parsed("config wifi-iface 'ath01'\n" + lists + ath0(lists) + "config wifi-iface 'ath1'\n" + lists).size(),
            1U);
  // It ends at the next wifi-iface section; a later section of the same name is not looked at.
  EXPECT_EQ(parsed(ath0(lists) + "config wifi-iface 'ath1'\n" + ath0(lists)).size(), 1U);
  EXPECT_EQ(parsed(ath0(lists) + ath0(lists)).size(), 2U);
}

TEST(ParseMacFilterTable, EmptyAndBrokenFiles) {
  for (const char* text : {"", "\n\n", "config", "config wifi-iface", "config wifi-iface 'ath0'", "'", "\tlist"}) {
    EXPECT_EQ(parsed(text), Entries()) << text;
  }
  EXPECT_EQ(parsed(ath0("\tlist namelist 'open\n\tlist namelist 'Two'\n\tlist maclist 'mac'\n")),
            (Entries{{"Two", "mac"}}));
  EXPECT_EQ(parsed(ath0("\tlist namelist 'open\n\tlist maclist 'mac'\n")), Entries());
  EXPECT_EQ(parsed(ath0("\tlist namelist 'a\n")), Entries());
  EXPECT_EQ(parsed(ath0("\tlist namelist none\n\tlist namelist 'One'\n\tlist maclist mac\n")), Entries());
}

TEST(ParseMacFilterTable, ValuesGoFromTheFirstToTheLastQuote) {
  EXPECT_EQ(parsed(ath0("\tlist namelist 'it's'\n\tlist maclist '' \n")), (Entries{{"it's", ""}}));
  EXPECT_EQ(parsed(ath0("list namelist 'a' 'b'\n  list maclist 'c'#\n")), (Entries{{"a' 'b", "c"}}));
}

TEST(ParseMacFilterTable, LineEndsOfOtherSystems) {
  EXPECT_EQ(parsed("config wifi-iface 'ath0'\r\n\tlist namelist 'One'\r\n\tlist maclist 'mac'\r\n"),
            (Entries{{"One", "mac"}}));
}

// What UCI writes is read as UCI reads it, whatever it holds.
TEST(ParseMacFilterTable, ReadsEveryTextThatUciWrites) {
  const std::vector<std::string> texts{"",
                                       " ",
                                       "Bob's",
                                       "'",
                                       "'''",
                                       "\\",
                                       "'\\''",
                                       "\"",
                                       "first\nsecond",
                                       "\n",
                                       "a'\n'b",
                                       "a'\nconfig wifi-iface 'ath1'\n",
                                       "x\n\tlist maclist 'fake'\n",
                                       "config wifi-iface",
                                       "list maclist 'y",
                                       "\tlist namelist 'z'",
                                       "tab\tend",
                                       "日本語",
                                       "%s%n",
                                       "$(reboot) `reboot` ; # comment",
                                       std::string(200, 'A')};
  router_state::config("macfilter", "config wifi-iface 'ath0'\n\nconfig wifi-iface 'ath1'\n");
  for (std::size_t i = 0; i < texts.size(); ++i) {
    ASSERT_EQ(UciAddList(nullptr, "macfilter", "ath0", "namelist", texts[i].c_str()), 0U) << texts[i];
    ASSERT_EQ(UciAddList(nullptr, "macfilter", "ath0", "maclist", std::to_string(i).c_str()), 0U);
  }
  const Entries entries = parsed(platform::read_file("/etc/config/macfilter").value_or(""));
  ASSERT_EQ(entries.size(), texts.size());
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(entries[i], std::make_pair(texts[i], std::to_string(i)));
  }
}

TEST(ParseMacFilterTable, ShowsWhatIsNoUtf8AsSuch) {
  EXPECT_EQ(parsed(ath0("\tlist namelist 'a\xff\xfez'\n\tlist maclist '\xe6\x97'\n")),
            (Entries{{"a\xef\xbf\xbd\xef\xbf\xbdz", "\xef\xbf\xbd"}}));
}

TEST(ParseMacFilterTable, LongValuesAreWhole) {
  const std::string name(100000, 'n');
  const std::string mac(5000, 'm');
  EXPECT_EQ(parsed(ath0("\tlist namelist '" + name + "'\n\tlist maclist '" + mac + "'\n")), (Entries{{name, mac}}));
}

TEST(ParseMacFilterTable, FailsWithoutAFile) {
  json::ListText table;
  int count = -1;
  EXPECT_EQ(parse_mac_filter_table("/tmp/none", table, count), 1);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(table.text(), "[ ]");
}

TEST(MacFilterSwitch, OnlyOneIsOn) {
  for (const auto& [text, value] :
       std::initializer_list<std::pair<const char*, int>>{{"1", 1}, {"0", 0}, {"01", 0}, {"11", 0}, {"on", 0}}) {
    router_state::config("macfilter", std::string("config macfilter 'macfilter'\n\toption enable '") + text + "'\n");
    int status = -1;
    EXPECT_EQ(get_mac_filter_status(status), 0);
    EXPECT_EQ(status, value) << text;
    EXPECT_EQ(get_mac_filter_enable(), value == 1) << text;
  }
}

TEST(MacFilterSwitch, Unreadable) {
  router_state::no_config("macfilter");
  int status = -1;
  EXPECT_EQ(get_mac_filter_status(status), 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(get_mac_filter_enable(), std::nullopt);
}

}  // namespace

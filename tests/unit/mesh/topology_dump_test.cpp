// The mesh daemon's dump, and what the system is asked for beside it.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_tools.h"
#include "mesh/dumps.h"
#include "mesh/topology.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TopologyDump : public ::testing::Test {
 protected:
  void SetUp() override {
    tools_.provide("emt", "cat");
    tools_.provide("sleep");
    op_mode("router");
  }
  void TearDown() override {
    for (const char* package : {"system", "button_mesh"}) router_state::no_config(package);
  }
  // The lines of the dump, each with a line end; "none" when there is no dump.
  static std::string dump() {
    const std::optional<DumpLines> lines = get_topology_dump();
    if (!lines) return "none";
    std::string text;
    for (std::size_t number = 0; number < lines->size(); ++number) text += std::string((*lines)[number]) + '\n';
    return text;
  }
  static void op_mode(const std::string& mode) {
    router_state::config("system", "config system\n\toption op_mode '" + mode + "'\n");
  }
  FakeTools tools_;
};

TEST_F(TopologyDump, IsAskedForInTheWordsOfTheMode) {
  struct Row {
    const char* mode;
    const char* words;
    std::vector<std::string> waits;
  };
  for (const Row& row : {Row{"router", "td s2\n", {"sleep 3"}}, Row{"other", "td s2\n", {"sleep 3"}},
                         Row{"ap", "td s2\n", {"sleep 5", "sleep 5"}}, Row{"re", "td s\n", {"sleep 1"}}}) {
    op_mode(row.mode);
    tools_.calls();
    EXPECT_EQ(dump(), row.words) << row.mode;
    std::vector<std::string> expected = row.waits;
    expected.emplace_back("emt");
    EXPECT_THAT(tools_.calls(), ::testing::UnorderedElementsAreArray(expected)) << row.mode;
  }
}

TEST_F(TopologyDump, IsWhateverTheConsolePrintsAndNothingWhenItIsSilent) {
  tools_.provide("emt", "echo half; exit 3");
  EXPECT_EQ(dump(), "half\n");
  tools_.provide("emt", "cat >/dev/null");
  EXPECT_EQ(dump(), "none");
}

TEST_F(TopologyDump, IsNotAskedForWithoutAMode) {
  router_state::no_config("system");
  tools_.calls();
  EXPECT_EQ(dump(), "none");
  EXPECT_THAT(tools_.calls(), IsEmpty());
}

// Devices that tell no address.
const std::string kNoAddresses =
    "IEEE 1905.1 device: AA:AA:AA:AA:AA:00, MAP Agent\nIEEE 1905.1 device: AA:AA:AA:AA:AA:01, MAP Agent\n";

TEST_F(TopologyDump, HasItsMissingAddressesFromOneLookAtTheArpTable) {
  tools_.answer("arp", "? (10.0.0.7) at aa:aa:aa:aa:aa:00 [ether] on br-lan\n? (10.0.0.8) at aa:aa:aa:aa:aa:01\n");
  const TopologyInfo info = parse_topology(DumpLines(kNoAddresses));
  ASSERT_EQ(info.devices.size(), 2U);
  EXPECT_EQ(info.devices[0].ip, "10.0.0.7");
  EXPECT_EQ(info.devices[1].ip, "10.0.0.8");
  EXPECT_THAT(tools_.calls(), ElementsAre("arp -a"));
}

TEST_F(TopologyDump, ThatTellsAllAddressesNeedsNoArpTable) {
  tools_.provide("arp");
  EXPECT_EQ(parse_topology(DumpLines(dumps::fixture("one_agent"))).devices.size(), 2U);
  EXPECT_THAT(tools_.calls(), IsEmpty());
}

TEST_F(TopologyDump, IsReadByTheModeOfTheMesh) {
  const auto type_in_mode = [](const std::string& mode) {
    router_state::config("button_mesh", package_text::section("easymesh", "easymesh", {{"mode", mode}}));
    const std::string no_link_told =
        dumps::header(dumps::kRoot, "None") + dumps::header(dumps::kAgent, dumps::kRoot) + dumps::remote("");
    return parse_topology(DumpLines(no_link_told)).devices.at(1).connectionType;
  };
  EXPECT_EQ(type_in_mode("0"), "WLAN_MLO_5G");
  EXPECT_EQ(type_in_mode("1"), "WLAN_MLO_24G_5G");
  EXPECT_EQ(type_in_mode("2"), "WLAN_MLO_5G_6G");
}

}  // namespace

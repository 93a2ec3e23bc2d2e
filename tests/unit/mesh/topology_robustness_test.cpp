// Dumps as no daemon should print them: cut, cyclic, huge, hostile.
#include <array>
#include <cstdio>

#include <gtest/gtest.h>

#include "mesh/dumps.h"
#include "mesh/topology.h"

namespace {

using namespace dumps;

void expect_a_sound_tree(const TopologyInfo& info, const std::string& what) {
  std::size_t links = 0;
  for (std::size_t position = 0; position < info.devices.size(); ++position) {
    for (const std::size_t child : info.devices[position].children) {
      ASSERT_LT(child, info.devices.size()) << what;
      EXPECT_EQ(info.devices[child].parent, position) << what;
      ++links;
    }
    std::size_t hops = 0;
    for (auto above = info.devices[position].parent; above; above = info.devices[*above].parent) {
      ASSERT_LT(++hops, info.devices.size()) << what;
    }
  }
  EXPECT_LE(links, info.devices.size()) << what;
  if (info.root) {
    EXPECT_EQ(info.root_device()->parent, std::nullopt) << what;
  }
}

constexpr std::array<const char*, 11> kFixtures{
    "controller_alone", "one_agent",   "chained_agents", "wired_backhaul", "wireless_backhaul", "duplicates",
    "twenty_devices",   "self_parent", "cycle",          "two_parents",    "reordered"};

TEST(ParseTopology, IsSafeOnEveryDumpThatEndsAfterAnyLine) {
  for (const char* name : kFixtures) {
    const std::string dump = fixture(name);
    for (std::size_t end = 0; end != std::string::npos; end = dump.find('\n', end + 1)) {
      expect_a_sound_tree(parse(dump.substr(0, end)), name);
    }
  }
}

TEST(ParseTopology, IsSafeOnEveryDumpThatLacksALine) {
  for (const char* name : kFixtures) {
    const std::string dump = fixture(name);
    for (std::size_t begin = 0; begin < dump.size(); begin = dump.find('\n', begin) + 1) {
      std::string rest = dump;
      expect_a_sound_tree(parse(rest.erase(begin, dump.find('\n', begin) + 1 - begin)), name);
    }
  }
}

TEST(ParseTopology, DoesNotLinkADeviceThatNamesItself) {
  const TopologyInfo info = parse(fixture("self_parent"));
  ASSERT_EQ(info.devices.size(), 3U);
  EXPECT_EQ(info.devices[1].parent, std::nullopt);
  EXPECT_EQ(info.devices[2].parent, info.root);
}

TEST(ParseTopology, LinksOnlyTheFirstHalfOfACycle) {
  const TopologyInfo info = parse(fixture("cycle"));
  ASSERT_EQ(info.devices.size(), 4U);
  EXPECT_EQ(info.devices[1].parent, 3U);
  EXPECT_EQ(info.devices[2].parent, 1U);
  EXPECT_EQ(info.devices[3].parent, std::nullopt);
  EXPECT_TRUE(info.root_device()->children.empty());
}

TEST(ParseTopology, KeepsTheFirstParentOfADeviceThatIsPrintedTwice) {
  const TopologyInfo info = parse(fixture("two_parents"));
  ASSERT_EQ(info.devices.size(), 3U);
  EXPECT_EQ(info.devices[2].parent, 1U);
  EXPECT_EQ(info.root_device()->children, std::vector<std::size_t>{1});
}

TEST(ParseTopology, LinksAnAgentThatStandsBeforeItsParent) {
  const TopologyInfo info = parse(fixture("reordered"));
  ASSERT_EQ(info.devices.size(), 3U);
  EXPECT_EQ(info.devices[1].parent, 2U);
  EXPECT_EQ(info.devices[2].parent, info.root);
}

TEST(ParseTopology, NeverGivesTheRootAParent) {
  const TopologyInfo info = parse(header(kRoot, "None") + header(kAgent, "unknown") + header(kRoot, kAgent));
  EXPECT_EQ(info.root_device()->parent, std::nullopt);
  EXPECT_EQ(info.root_device()->level, 0);
  EXPECT_EQ(info.root_device()->connectionType, "");
}

TEST(ParseTopology, ReadsMegabytesOfStationsOfOneAgent) {
  std::string dump = header(kRoot, "None") + header(kAgent, kRoot) + interfaces("1 WLAN2G AA:AA:AA:AA:AA:11") +
                     " 1 Bridged addresses:\n Address  Interface Type\n";
  std::size_t count = 0;
  for (; dump.size() < 3'000'000; ++count) {
    std::array<char, 18> mac{};
    std::snprintf(mac.data(), mac.size(), "0C:00:%02zX:%02zX:%02zX:00", count >> 16 & 255, count >> 8 & 255,
                  count & 255);
    dump.append(mac.data()).append(" 1 Remote\n");
  }
  EXPECT_EQ(parse(dump).devices[1].stations.size(), count);
}

// Ten megabytes in which no table ends, so that every device's tables reach to the end of the dump.
TEST(ParseTopology, ReadsTenMegabytesOfTablesWithoutAnEnd) {
  std::string dump = header(kRoot, "None");
  std::string upstream = kRoot;
  for (int number = 0; dump.size() < 10'000'000; ++number) {
    std::array<char, 18> mac{};
    std::snprintf(mac.data(), mac.size(), "DD:%02X:%02X:%02X:00:11", number >> 16 & 255, number >> 8 & 255,
                  number & 255);
    dump += header(mac.data(), upstream) + interfaces("0 ETHER DD:DD:DD:DD:DD:10\n1 WLAN2G DD:DD:DD:DD:DD:11") +
            remote("WLAN5G") + "Bridged addresses:\nAddress Interface Type\n0C" + (mac.data() + 2) + " 0 Remote\n";
    upstream = mac.data();
  }
  const TopologyInfo info = parse(dump);
  EXPECT_EQ(info.devices.back().level, static_cast<int>(info.devices.size()) - 1);
}

TEST(ParseTopology, TakesTextsOfOthersAsTexts) {
  for (const std::string& text : {std::string("%n%s%x"), std::string("'; reboot #"), std::string("$(reboot)"),
                                  std::string("\xff\xfe\x80"), std::string("a\0b", 3), std::string(5000, 'A')}) {
    const std::string dump = header(text.substr(0, 17), "None") + header(kAgent, text.substr(0, 17)) +
                             interfaces("1 " + text + " " + text) + remote(text) + bridged(text + " 1 Remote " + text) +
                             "Legacy Devices:\nInterface " + text + ":\n" + text + ":" + text + "\n";
    expect_a_sound_tree(parse(dump), text);
  }
}

TEST(ParseTopology, NeverMakesADeviceItsOwnAncestor) {
  const std::string a = "AA:AA:AA:AA:AA:01";
  const std::string b = "AA:AA:AA:AA:AA:02";
  const std::string root = "AA:AA:AA:AA:AA:00";
  const TopologyInfo info = parse(header(root, "None") + header(a, b) + header(b, a) + header(root, a) + header(a, a));
  ASSERT_EQ(info.devices.size(), 3U);
  EXPECT_EQ(info.devices[1].parent, 2U);
  EXPECT_EQ(info.devices[2].parent, std::nullopt);
}

TEST(ParseTopology, IsSafeOnAnyCutOfADump) {
  const std::string dump = fixture("duplicates");
  for (std::size_t length = 0; length <= dump.size(); ++length) {
    const TopologyInfo info = parse(dump.substr(0, length));
    EXPECT_LE(info.devices.size(), 3U);
  }
  EXPECT_EQ(parse("").root_device(), nullptr);
  EXPECT_EQ(parse(std::string(100000, 'x')).devices.size(), 0U);
}

TEST(ParseTopology, ReadsTenMegabytesOfDevices) {
  std::string dump = fixture("one_agent");
  for (int number = 0; dump.size() < 10'000'000; ++number) {
    std::array<char, 18> mac{};
    std::snprintf(mac.data(), mac.size(), "DD:%02X:%02X:%02X:00:00", number >> 16 & 255, number >> 8 & 255,
                  number & 255);
    dump += header(mac.data(), "02:00:00:A1:00:20") + "    Index Medium Type\n     1 WLAN2G " + mac.data() + " x\n";
  }
  EXPECT_GT(parse(dump).devices.size(), 50'000U);
}

}  // namespace

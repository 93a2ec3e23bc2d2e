// What `iw` says of the access point that a station is joined to.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_tools.h"
#include "system_helpers.h"

namespace {

TEST(GetLinkBssid, TakesTheAddressBehindConnectedTo) {
  FakeTools tools;
  struct Row {
    const char* output;
    const char* bssid;
  };
  for (const Row& row : {Row{"Connected to aa:bb:cc:dd:ee:0f (on ath03)\n\tSSID: x\n", "AA:BB:CC:DD:EE:0F"},
                         Row{"Connected to aa:bb:cc:dd:ee:0f(on ath03)\n", "AA:BB:CC:DD:EE:0F"},
                         Row{"Connected to aa:bb:cc (on ath03)\n", ""}, Row{"Connected to aa:bb:cc:dd:ee:0f\n", ""},
                         Row{"Not connected.\n", ""}, Row{"", ""}}) {
    tools.provide("iw", std::string("printf '%s' '") + row.output + "'");
    EXPECT_EQ(get_link_bssid("ath03"), row.bssid) << row.output;
    EXPECT_THAT(tools.calls(), ::testing::ElementsAre("iw dev ath03 link"));
  }
}

}  // namespace

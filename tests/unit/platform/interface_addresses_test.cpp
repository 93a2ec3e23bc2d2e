// What `iw` says of the access point that a station is joined to.
#include <gtest/gtest.h>

#include "platform/file.h"
#include "platform/test_tool.h"
#include "system_helpers.h"

namespace {

using GetLinkBssid = TestTool;

TEST_F(GetLinkBssid, TakesTheAddressBehindConnectedTo) {
  provide("iw", "cat /tmp/test_tools/link\n");
  struct Row {
    const char* output;
    const char* bssid;
  };
  for (const Row& row : {Row{"Connected to aa:bb:cc:dd:ee:0f (on ath03)\n\tSSID: x\n", "AA:BB:CC:DD:EE:0F"},
                         Row{"Connected to aa:bb:cc:dd:ee:0f(on ath03)\n", "AA:BB:CC:DD:EE:0F"},
                         Row{"Connected to aa:bb:cc (on ath03)\n", ""}, Row{"Connected to aa:bb:cc:dd:ee:0f\n", ""},
                         Row{"Not connected.\n", ""}, Row{"", ""}}) {
    ASSERT_TRUE(platform::write_file("/tmp/test_tools/link", row.output));
    EXPECT_EQ(get_link_bssid("ath03"), row.bssid) << row.output;
  }
}

}  // namespace

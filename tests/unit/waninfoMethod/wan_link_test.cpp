// What sysfs tells about the WAN port, and what stays where it tells nothing.
#include "waninfoMethod/wan_link.h"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_log.h"
#include "wireless/router_state.h"

namespace {

using ::testing::ElementsAre;

constexpr const char* kAddress = "/sys/class/net/eth1/address";
constexpr const char* kCarrier = "/sys/class/net/eth1/carrier";

class WanLink : public ::testing::Test {
 protected:
  void TearDown() override { std::filesystem::remove_all("/sys/class/net"); }
  CapturedLog log_;
};

TEST_F(WanLink, HasAnAddressUpToItsLineEnd) {
  struct Row {
    std::string content;
    std::string mac;
  };
  for (const Row& row : {Row{"00:11:22:33:44:55\n", "00:11:22:33:44:55"}, Row{"00:11\r\nx", "00:11"}, Row{"\n", ""},
                         Row{std::string(100, 'x'), std::string(63, 'x')}}) {
    router_state::write(kAddress, row.content);
    std::string mac = "before";
    EXPECT_EQ(get_macAddr("eth1", mac), 0) << row.content;
    EXPECT_EQ(mac, row.mac) << row.content;
  }
  EXPECT_THAT(log_.texts(), ElementsAre());
}

TEST_F(WanLink, TellsWhyThereIsNoAddress) {
  std::string mac = "before";
  EXPECT_EQ(get_macAddr("eth1", mac), 1);
  EXPECT_THAT(log_.texts(), ElementsAre("open file failed."));
  router_state::write(kAddress, "");
  EXPECT_EQ(get_macAddr("eth1", mac), 1);
  EXPECT_THAT(log_.texts(), ElementsAre("get macaddr fail!"));
  EXPECT_EQ(mac, "before");
}

TEST_F(WanLink, HasALinkAsTheCarrierTells) {
  int status = 7;
  get_wan_link_status(status);
  EXPECT_EQ(status, 7) << "there is no such file";
  struct Row {
    const char* content;
    int status;
  };
  for (const Row& row :
       {Row{"1\n", 1}, Row{"0\n", 0}, Row{"", 0}, Row{"x\n", 0}, Row{"\n1", 0}, Row{"12345678", 1234567}}) {
    router_state::write(kCarrier, row.content);
    get_wan_link_status(status);
    EXPECT_EQ(status, row.status) << row.content;
  }
}

}  // namespace

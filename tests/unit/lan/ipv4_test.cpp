// IPv4 checks and arithmetic.
#include "lan/ipv4.h"

#include <gtest/gtest.h>

namespace {

TEST(CheckIpv4Format, TellsFourDecimalFieldsFromOtherTexts) {
  for (const char* text : {"0.0.0.0", "1.2.3.4", "255.255.255.255", "192.168.1.1"})
    EXPECT_TRUE(check_ipv4_format(text)) << text;
  for (const char* text : {"", "1.2.3", "1.2.3.4.5", "1.2.3.4 ", " 1.2.3.4", "01.2.3.4", "1.2.3.256", "1.2.3.-1",
                           "1..2.3", "a.b.c.d", "1.2.3.4x", "999999999999.1.1.1", "1.2.3."}) {
    EXPECT_FALSE(check_ipv4_format(text)) << text;
  }
}

TEST(Ipv4ToUint, PutsTheFirstFieldHighest) {
  EXPECT_EQ(ipv4_to_uint("1.2.3.4"), 0x01020304U);
  EXPECT_EQ(ipv4_to_uint("255.255.255.255"), 0xffffffffU);
  EXPECT_EQ(ipv4_to_uint("nonsense"), 0U);
}

TEST(IsIpInCidr, LeavesBothEndsOut) {
  EXPECT_FALSE(is_ip_in_cidr("224.0.0.0", "224.0.0.0/4"));
  EXPECT_TRUE(is_ip_in_cidr("224.0.0.1", "224.0.0.0/4"));
  EXPECT_TRUE(is_ip_in_cidr("239.255.255.254", "224.0.0.0/4"));
  EXPECT_FALSE(is_ip_in_cidr("239.255.255.255", "224.0.0.0/4"));
  EXPECT_FALSE(is_ip_in_cidr("1.2.3.4", "1.2.3.4/32"));
  for (const char* range : {"1.2.3.0", "1.2.3.0/0", "1.2.3.0/33", "1.2.3.0/x"})
    EXPECT_FALSE(is_ip_in_cidr("1.2.3.4", range));
}

TEST(IsValidIp, AnswersZeroForUsableUnicastAddresses) {
  for (const char* text : {"192.168.1.1", "10.0.0.1", "224.0.0.0", "127.0.0.0", "240.0.0.0"})
    EXPECT_EQ(is_valid_ip(text), 0) << text;
  for (const char* text : {"", "x", "0.0.0.0", "255.255.255.255", "224.0.0.1", "240.0.0.1", "127.0.0.1", "1.2.3"}) {
    EXPECT_EQ(is_valid_ip(text), 1) << text;
  }
}

TEST(IsInvalidNetmask, TellsContiguousMasksFromOthers) {
  for (const char* mask :
       {"255.255.255.0", "255.255.254.0", "255.255.255.255", "128.0.0.0", " 255.255.255.0 ", "255. 0.0.0"}) {
    EXPECT_EQ(is_invalid_netmask(mask), 0) << mask;
  }
  for (const char* mask : {"", "0.0.0.0", "255.0.255.0", "255.255.255.01", "255.255.255", "255.255.255.0.0",
                           "254.255.0.0", "255.255.253.0", "a.b.c.d", "255.255..0", "256.0.0.0"}) {
    EXPECT_EQ(is_invalid_netmask(mask), 1) << mask;
  }
}

TEST(IsNetworkOrBroadcastIp, LooksAtTheHostPart) {
  EXPECT_EQ(is_network_or_broadcast_ip("192.168.1.0", "255.255.255.0"), 1);
  EXPECT_EQ(is_network_or_broadcast_ip("192.168.1.255", "255.255.255.0"), 1);
  EXPECT_EQ(is_network_or_broadcast_ip("192.168.1.1", "255.255.255.0"), 0);
  EXPECT_EQ(is_network_or_broadcast_ip("192.168.0.255", "255.255.254.0"), 0);
}

TEST(CheckIpGatewayInSubnet, AnswersZeroInside) {
  EXPECT_EQ(check_ip_gateway_in_Subnet("192.168.1.1", "192.168.1.254", "255.255.255.0"), 0);
  EXPECT_EQ(check_ip_gateway_in_Subnet("192.168.1.1", "192.168.2.254", "255.255.255.0"), 1);
  for (const char* text : {"", "x"}) {
    EXPECT_EQ(check_ip_gateway_in_Subnet(text, "192.168.1.254", "255.255.255.0"), 1);
    EXPECT_EQ(check_ip_gateway_in_Subnet("192.168.1.1", text, "255.255.255.0"), 1);
    EXPECT_EQ(check_ip_gateway_in_Subnet("192.168.1.1", "192.168.1.254", text), 1);
  }
}

}  // namespace

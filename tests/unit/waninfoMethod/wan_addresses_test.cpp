// The address script's result file.
#include "waninfoMethod/wan_addresses.h"

#include <gtest/gtest.h>

namespace {

WanAddresses read(const std::string& content) {
  WanAddresses addresses;
  read_address_lines(content, addresses);
  return addresses;
}

TEST(AddressLines, FillEveryField) {
  const WanAddresses addresses = read(
      "addr:192.0.2.10\nMask:255.255.255.0\ngatewayV4:192.0.2.1\nipv6Global:2001:db8::10/64\nipv6Link:fe80::1\n"
      "gatewayV6:fe80::2\nnameserver 192.0.2.53\nnameserver 2001:db8::53\nnameserver 192.0.2.54\n"
      "nameserver 2001:db8::54\n");
  EXPECT_EQ(addresses.ipv4_address, "192.0.2.10");
  EXPECT_EQ(addresses.ipv4_mask, "255.255.255.0");
  EXPECT_EQ(addresses.ipv4_gateway, "192.0.2.1");
  EXPECT_EQ(addresses.ipv6_global, "2001:db8::10/64");
  EXPECT_EQ(addresses.ipv6_local, "fe80::1");
  EXPECT_EQ(addresses.ipv6_gateway, "fe80::2");
  EXPECT_EQ(addresses.ipv4_dns1, "192.0.2.53");
  EXPECT_EQ(addresses.ipv4_dns2, "192.0.2.54");
  EXPECT_EQ(addresses.ipv6_dns1, "2001:db8::53");
  EXPECT_EQ(addresses.ipv6_dns2, "2001:db8::54");
}

TEST(AddressLines, OfNothingLeaveNone) {
  for (const char* content : {"", "\n\n", "other:1\n", "addr\n", "nameserver\n", " addr:1.2.3.4\n"}) {
    const WanAddresses addresses = read(content);
    EXPECT_EQ(addresses.ipv4_address, "None") << content;
    EXPECT_EQ(addresses.ipv4_dns1, "None") << content;
    EXPECT_EQ(addresses.ipv6_dns1, "None") << content;
  }
}

TEST(AddressLines, LeaveATunnelsAddresses) {
  WanAddresses addresses;
  addresses.ipv4_address = "198.51.100.1";
  addresses.ipv6_global = "2001:db8::1/64";
  read_address_lines("addr:192.0.2.10\nipv6Global:2001:db8::2\nMask:255.0.0.0\n", addresses);
  EXPECT_EQ(addresses.ipv4_address, "198.51.100.1");
  EXPECT_EQ(addresses.ipv6_global, "2001:db8::1/64");
  EXPECT_EQ(addresses.ipv4_mask, "255.0.0.0");
}

TEST(AddressLines, KeepTheFirstAddressAndTheLastMask) {
  const WanAddresses addresses = read("addr:1.1.1.1\naddr:2.2.2.2\nMask:3.3.3.3\nMask:4.4.4.4\n");
  EXPECT_EQ(addresses.ipv4_address, "1.1.1.1");
  EXPECT_EQ(addresses.ipv4_mask, "4.4.4.4");
}

TEST(AddressLines, IgnoreAThirdNameServer) {
  const WanAddresses addresses = read(
      "nameserver 1.1.1.1\nnameserver 2.2.2.2\nnameserver 3.3.3.3\nnameserver ::1\nnameserver ::2\nnameserver ::3\n");
  EXPECT_EQ(addresses.ipv4_dns1 + " " + addresses.ipv4_dns2, "1.1.1.1 2.2.2.2");
  EXPECT_EQ(addresses.ipv6_dns1 + " " + addresses.ipv6_dns2, "::1 ::2");
}

TEST(AddressLines, DropTheLastByteOfEveryValue) {
  EXPECT_EQ(read("addr:192.0.2.10").ipv4_address, "192.0.2.1") << "no line feed at the end of the file";
  EXPECT_EQ(read("addr:1.2.3.4\r\n").ipv4_address, "1.2.3.4\r");
  EXPECT_EQ(read("Mask:\n").ipv4_mask, "");
  EXPECT_EQ(read("Mask:").ipv4_mask, "");
}

TEST(AddressLines, BoundEveryField) {
  const std::string text(100, '1');
  const WanAddresses addresses =
      read("addr:" + text + "\nMask:" + text + "\ngatewayV4:" + text + "\nipv6Global:" + text + "\nipv6Link:" + text +
           "\ngatewayV6:" + text + "\nnameserver " + text + "\n");
  EXPECT_EQ(addresses.ipv4_address.size(), 15U);
  EXPECT_EQ(addresses.ipv4_mask.size(), 15U);
  EXPECT_EQ(addresses.ipv4_gateway.size(), 15U);
  EXPECT_EQ(addresses.ipv6_global.size(), 71U);
  EXPECT_EQ(addresses.ipv6_local.size(), 63U);
  EXPECT_EQ(addresses.ipv6_gateway.size(), 63U);
  EXPECT_EQ(addresses.ipv6_dns1.size(), 63U);
}

TEST(AddressLines, TakeALongLineInPieces) {
  const WanAddresses addresses = read("other:" + std::string(121, 'x') + "addr:9.9.9.9\n");
  EXPECT_EQ(addresses.ipv4_address, "9.9.9.9") << "the second piece begins with a name";
}

TEST(IsIpv4Address, LooksAtTheGivenLength) {
  EXPECT_TRUE(is_ipv4_address("192.0.2.1", 9));
  EXPECT_TRUE(is_ipv4_address("192.0.2.1 and more", 9));
  EXPECT_FALSE(is_ipv4_address("192.0.2.1 and more", 18));
  EXPECT_FALSE(is_ipv4_address("192.0.2.256", 11));
  EXPECT_FALSE(is_ipv4_address("", 0));
  EXPECT_FALSE(is_ipv4_address("::1", 3));
  EXPECT_FALSE(is_ipv4_address(std::string(1000, '1'), 1000));
}

}  // namespace

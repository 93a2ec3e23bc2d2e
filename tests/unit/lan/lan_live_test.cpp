// What the platform's tools print of br-lan, and what becomes of it when they print something else.
#include "lan/lan_live.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

const std::string kLong(10000, 'A');
const std::string kNotUtf8 = "\xff\xfe\xc3(";

TEST(ParseInetLine, TakesAddressAndMaskBehindTheirColons) {
  struct Row {
    std::string line;
    std::string address;
    std::string mask;
  };
  const std::string head = "          inet addr:";
  for (const Row& row : {
           Row{head + "192.168.0.1  Bcast:192.168.0.255  Mask:255.255.255.0\n", "192.168.0.1", "255.255.255.0"},
           Row{"inet addr:1.2.3.4 Bcast:x Mask:y\n", "1.2.3.4", "y"},
           Row{"\tinet\taddr:1.2.3.4\tBcast:x\tMask:y\n", "1.2.3.4", "y"},
           Row{head + "1.2.3.4  Bcast:x  Mask:255.0.0.0", "1.2.3.4", "255.0.0."},  // the last character is dropped
           Row{head + "1.2.3.4  Bcast:x  Mask:255.0.0.0\r\n", "1.2.3.4", "255.0.0.0\r"},
           Row{head + "1.2.3.4  Mask:255.0.0.0\n", "1.2.3.4", "None"},  // the mask is the fourth field or none
           Row{head + "1.2.3.4  Bcast:x  Mask:\n", "1.2.3.4", "None"},
           Row{head + "1.2.3.4  Bcast:x  Mask\n", "1.2.3.4", "None"},
           Row{head + "1.2.3.4\n", "1.2.3.4", "None"},
           Row{head + "1.2.3.4  Bcast:x  Mask:a:b\n", "1.2.3.4", "a:b"},
           Row{head + "1.2.3.4  Bcast:x  Mask:" + kLong + "\n", "1.2.3.4", std::string(31, 'A')},
       }) {
    const LanAddress parsed = parse_inet_line(row.line);
    EXPECT_EQ(parsed.address, row.address) << row.line;
    EXPECT_EQ(parsed.mask, row.mask) << row.line;
  }
}

TEST(ParseInetLine, GivesNoMaskToAMalformedAddress) {
  const std::string rest = "  Bcast:192.168.0.255  Mask:255.255.255.0\n";
  for (const std::string& address :
       Texts{"", "1.2.3", "1.2.3.4.5", "01.2.3.4", "1.2.3.256", "x", kLong, kNotUtf8, "%s%n"}) {
    const LanAddress parsed = parse_inet_line("          inet addr:" + address + rest);
    EXPECT_EQ(parsed.address, "0.0.0.0") << address;
    EXPECT_EQ(parsed.mask, "None") << address;
  }
  for (const std::string& line : Texts{"", "\n", " ", "inet", "inet addr\n", kLong, kNotUtf8}) {
    EXPECT_EQ(parse_inet_line(line).address, "0.0.0.0") << line;
    EXPECT_EQ(parse_inet_line(line).mask, "None") << line;
  }
}

TEST(ParseInet6, TakesTheFirstAddressOfTheScope) {
  const std::string output =
      "br-lan    Link encap:Ethernet\n"
      "          inet6 addr: 2001:db8::1/64 Scope:Global\n"
      "          inet6 addr: fe80::1/64 Scope:Link\n"
      "          inet6 addr: fe80::2/64 Scope:Link\n";
  EXPECT_EQ(parse_inet6(output, "Scope:Link"), "fe80::1");
  EXPECT_EQ(parse_inet6(output, "Scope:Global"), "2001:db8::1");
  EXPECT_EQ(parse_inet6(output, "Scope:Site"), "None");
}

TEST(ParseInet6, TellsNoneOfAnythingElse) {
  for (const std::string& output :
       Texts{"", "\n", "Scope:Link\n", "inet6 addr: fe80::1 Scope:Link\n", "inet6 addr:/64 Scope:Link\n",
             "inet6 addr:   /64 Scope:Link\n", "inet6 addr: fe80::1/64\nScope:Link\n",
             "inet addr: 1.2.3.4/8 Scope:Link\n", kLong, kNotUtf8}) {
    EXPECT_EQ(parse_inet6(output, "Scope:Link"), "None") << output;
  }
}

TEST(ParseInet6, ReadsLinesWithoutALineFeedAndBoundsTheText) {
  EXPECT_EQ(parse_inet6("inet6 addr: fe80::1/64 Scope:Link", "Scope:Link"), "fe80::1");
  EXPECT_EQ(parse_inet6("inet6 addr:fe80::1/64 Scope:Link\r\n", "Scope:Link"), "fe80::1");
  EXPECT_EQ(parse_inet6("inet6 addr: " + kLong + "/64 Scope:Link\n", "Scope:Link"), std::string(63, 'A'));
}

TEST(ParseDefaultGateway, TakesTheThirdFieldOfTheFirstDefaultRoute) {
  EXPECT_EQ(parse_default_gateway("default via 192.168.0.254 dev br-lan\n"), "192.168.0.254");
  EXPECT_EQ(parse_default_gateway("10.0.0.0/8 dev x\ndefault via 1.1.1.1 dev a\ndefault via 2.2.2.2 dev b\n"),
            "1.1.1.1");
  EXPECT_EQ(parse_default_gateway("default via fe80::1 dev br-lan  metric 512"), "fe80::1");
  EXPECT_EQ(parse_default_gateway("  default via\t1.1.1.1\n"), "1.1.1.1");
  EXPECT_EQ(parse_default_gateway("default via " + kLong + "\n").size(), 63U);
}

TEST(ParseDefaultGateway, TellsNoneOfAnythingElse) {
  for (const std::string& routes : Texts{"", "\n", "default\n", "default via", "default via\nx y z\n",
                                         "default dev br-lan\n", "10.0.0.0/8 via 1.1.1.1\n", kLong, kNotUtf8}) {
    EXPECT_EQ(parse_default_gateway(routes), "None") << routes;
  }
}

TEST(ParseNameservers, TellsIpv4FromTheRest) {
  const std::string text =
      "# made by netifd\nnameserver 1.1.1.1\n  nameserver\t::1 # here\nsearch lan\nnameserver 2.2.2.2\nnameserver x\n";
  EXPECT_EQ(parse_nameservers(text, true, 31), (Texts{"1.1.1.1", "2.2.2.2"}));
  EXPECT_EQ(parse_nameservers(text, false, 63), (Texts{"::1", "x"}));
}

TEST(ParseNameservers, IgnoresOtherLinesAndBoundsEachText) {
  for (const std::string& text :
       Texts{"", "\n", "nameserver", "nameserver \n", "nameservers 1.1.1.1\n", "#nameserver 1.1.1.1",
             "# nameserver 1.1.1.1\n", "1.1.1.1 nameserver\n", kNotUtf8, kLong}) {
    EXPECT_EQ(parse_nameservers(text, true, 31), Texts{}) << text;
    EXPECT_EQ(parse_nameservers(text, false, 63), Texts{}) << text;
  }
  EXPECT_EQ(parse_nameservers("nameserver " + kLong, false, 63), Texts{std::string(63, 'A')});
}

}  // namespace

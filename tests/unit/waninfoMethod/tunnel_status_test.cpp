// The tunnel-status tool's report.
#include "waninfoMethod/tunnel_status.h"

#include <gtest/gtest.h>

namespace {

TEST(TunnelStatus, FillsEveryFieldFromItsMarker) {
  const Ip4orip6Info info = parse_tunnel_status(
      "MAP-E/DS-Lite/IPIP6 mode: MAP-E\nVNE Service: JPNE v6Plus\nCE: 2001:db8::1\nIPv4: 192.0.2.1\n"
      "WAN global address: 2001:db8::2\nAFTR: gw.example\nPort: 4096-4111\n");
  EXPECT_EQ(info.mode, "MAP-E");
  EXPECT_EQ(info.vne_service, "JPNE v6Plus");
  EXPECT_EQ(info.CE, "2001:db8::1");
  EXPECT_EQ(info.ipv4, "192.0.2.1");
  EXPECT_EQ(info.wan_global_addr, "2001:db8::2");
  EXPECT_EQ(info.aftr, "gw.example");
  EXPECT_EQ(info.port, "4096-4111");
}

TEST(TunnelStatus, FindsAMarkerAnywhereInTheLine) {
  const Ip4orip6Info info = parse_tunnel_status("  status, IPv4: 192.0.2.1 CE: x\nnothing here\n\n");
  EXPECT_EQ(info.CE, "x") << "the first marker of the table wins";
  EXPECT_EQ(info.ipv4, "");
}

TEST(TunnelStatus, PutsPortLinesOneBehindTheOther) {
  const Ip4orip6Info info = parse_tunnel_status("Port: 1-2 \n3-4 \nPort: 5-6\n\n7");
  EXPECT_EQ(info.port, "1-2 3-4 Port: 5-67");
}

TEST(TunnelStatus, LosesTheLineThatEndsThePorts) {
  const Ip4orip6Info info = parse_tunnel_status("Port: 1-2\n3-4\nAFTR: lost\nAFTR: kept\nCE: c\n");
  EXPECT_EQ(info.port, "1-23-4");
  EXPECT_EQ(info.aftr, "kept");
  EXPECT_EQ(info.CE, "c");
}

TEST(TunnelStatus, BoundsEveryField) {
  const std::string rest(120, 'x');
  const Ip4orip6Info info = parse_tunnel_status("MAP-E/DS-Lite/IPIP6 mode: " + rest + "\nCE: " + rest +
                                                "\nIPv4: " + rest + "\nWAN global address: " + rest + "\n");
  EXPECT_EQ(info.mode.size(), 31U);
  EXPECT_EQ(info.CE.size(), 63U);
  EXPECT_EQ(info.ipv4.size(), 15U);
  EXPECT_EQ(info.wan_global_addr.size(), 63U);
}

TEST(TunnelStatus, CutsALongLineIntoPieces) {
  const Ip4orip6Info info = parse_tunnel_status("AFTR: " + std::string(300, 'a') + "\n");
  EXPECT_EQ(info.aftr, std::string(127 - 6, 'a')) << "the rest of the line has no marker";
}

TEST(TunnelStatus, BoundsTheListOfPorts) {
  std::string output = "Port: ";
  for (int i = 0; i < 200; ++i) output += "1234567890\n";
  const Ip4orip6Info info = parse_tunnel_status(output);
  EXPECT_EQ(info.port.size(), 1023U);
}

TEST(TunnelStatus, OfNothingIsEmpty) {
  const Ip4orip6Info info = parse_tunnel_status("");
  EXPECT_EQ(info.mode + info.vne_service + info.CE + info.ipv4 + info.port + info.wan_global_addr + info.aftr, "");
}

TEST(TunnelStatus, LeavesNothingOfAnEarlierReport) {
  g_ip4orip6Info.CE = "old";
  EXPECT_EQ(Ip4ov6jp_InfoCmd(), 0) << "the shell starts, the tool is missing here";
  EXPECT_EQ(g_ip4orip6Info.CE, "");
}

}  // namespace

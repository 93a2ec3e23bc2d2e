// The lines of the lease file.
#include "lan/dhcp_leases.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr long kNow = 1000;

std::vector<std::string> leases(std::string_view lines) {
  std::vector<std::string> seen;
  for_each_lease(lines, kNow, [&](const Lease& lease) {
    seen.push_back(std::string(lease.ip) + " " + std::string(lease.mac) + " " + std::to_string(lease.remain_time));
  });
  return seen;
}

TEST(ForEachLease, VisitsThemInTheirOrder) {
  EXPECT_THAT(leases("1060,aa:aa,10.0.0.1\n1001,bb:bb,10.0.0.2\n"),
              ElementsAre("10.0.0.1 aa:aa 60", "10.0.0.2 bb:bb 1"));
}

TEST(ForEachLease, LeavesOutWhatIsOverAndWhatNeverEnds) {
  EXPECT_THAT(leases("1000,a,1\n999,b,2\n0,c,3\n-5,d,4\nx,e,5\n1002,f,6\n"), ElementsAre("6 f 2"));
}

TEST(ForEachLease, TakesNoLineThatHasNotThreeFields) {
  EXPECT_THAT(leases("\n1060\n1060,a\n1060,a,b,c\n,,,\n"), IsEmpty());
  EXPECT_THAT(leases("1060,,a,,,b,\n"), ElementsAre("b a 60")) << "empty fields are none";
}

TEST(ForEachLease, EndsALineAtACarriageReturnAndAtTheEnd) {
  EXPECT_THAT(leases("1060,a,b\r\n1060,c,d\rjunk\n1060,e,f"), ElementsAre("b a 60", "d c 60", "f e 60"));
}

TEST(ForEachLease, BoundsEveryText) {
  const std::string text(40, 'x');
  EXPECT_THAT(leases("1060," + text + "," + text + "\n"),
              ElementsAre(text.substr(0, 31) + " " + text.substr(0, 31) + " 60"));
  EXPECT_THAT(leases("1060,a," + std::string(30, 'x') + "é\n"), ElementsAre(std::string(30, 'x') + " a 60"));
}

TEST(ForEachLease, BoundsTheTime) {
  EXPECT_THAT(leases("99999999999999999999999,a,b\n"), ElementsAre("b a 2147483647"));
}

TEST(ForEachLease, TakesALongLineInPieces) {
  EXPECT_THAT(leases("1060,a," + std::string(247, 'x') + "\n1060,c,d\n").size(), 2U);
  EXPECT_THAT(leases(std::string(255, 'x') + "1060,a,b\n"), ElementsAre("b a 60")) << "what follows begins a line";
}

TEST(GetUptimeSeconds, IsWhatTheKernelSays) { EXPECT_GT(get_uptime_seconds(), 0); }

}  // namespace

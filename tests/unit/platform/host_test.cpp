// The machine's uptime and addresses; the unit root has the loopback interface alone, which may be down.
#include "platform/host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/file.h"

namespace {

TEST(UptimeSeconds, IsThatOfProcUptime) {
  const auto uptime = [] { return std::stol(platform::read_file("/proc/uptime", 32).value_or("-1")); };
  const long before = uptime();
  const std::optional<long> told = platform::uptime_seconds();
  ASSERT_TRUE(told.has_value());
  EXPECT_GE(*told, before);
  EXPECT_LE(*told, uptime() + 1);  // the one is rounded down where the other is not
}

TEST(Ipv4AddressOf, IsTheInterfacesOwn) {
  EXPECT_THAT(platform::ipv4_address_of("lo"), ::testing::AnyOf(std::nullopt, std::optional<std::string>("127.0.0.1")));
  EXPECT_EQ(platform::ipv4_address_of("no-such-if0"), std::nullopt);
  EXPECT_EQ(platform::ipv4_address_of(""), std::nullopt);
}

}  // namespace

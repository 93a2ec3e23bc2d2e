#include "repeater/network_config.h"

#include <gtest/gtest.h>

namespace {

TEST(GetLanIpaddrPrefix, GivesWhatStandsBeforeTheThirdDot) {
  const std::pair<const char*, const char*> rows[] = {
      {"192.168.10.1", "192.168.10"}, {"1.2.3.", "1.2.3"}, {"...", ".."}, {"1.2.3.4.5", "1.2.3"}};
  for (const auto& [address, prefix] : rows) {
    std::string out;
    EXPECT_EQ(GetLanIpaddrPrefix(address, out), 0);
    EXPECT_EQ(out, prefix);
  }
}

TEST(GetLanIpaddrPrefix, RefusesAnAddressWithoutThreeDots) {
  for (const char* address : {"", "1", "1.2", "1.2.3"}) {
    std::string out = "untouched";
    EXPECT_EQ(GetLanIpaddrPrefix(address, out), 1) << address;
    EXPECT_EQ(out, "untouched");
  }
}

}  // namespace

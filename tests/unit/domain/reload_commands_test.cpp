// The commands that bring the wireless stack up, for every combination of brand, role and mode.
#include "domain/reload_commands.h"

#include <map>
#include <string>

#include <gtest/gtest.h>

namespace {

constexpr int kModes[] = {-1, 0, 1, 2, 3, 100};

// "brand role mode"; what is missing reloads nothing at all.
const std::map<std::string, std::string> kBringUp{
    {"0 1 1", "wifi multi_up mld2 mld3 mld6 &"},
    {"0 1 2", "wifi multi_up mld0 mld1 mld6 &"},
    {"1 1 0", "wifi multi_up mld2 mld5 mld6 mld11 mld12 &"},
    {"1 1 1", "wifi multi_up mld0 mld2 mld4 mld10 mld11 &"},
    {"1 1 2", "wifi multi_up mld0 mld2 mld5 mld10 mld11 &"},
    {"0 2 1", "wifi multi_up mld4 mld5 &"},
    {"0 2 2", "wifi multi_up mld2 mld3 &"},
    {"1 2 0", "wifi multi_up mld5 mld8 mld9 &"},
    {"1 2 1", "wifi multi_up mld4 mld6 mld7 &"},
    {"1 2 2", "wifi multi_up mld3 mld4 mld7 &"},
};

std::string expected_reload(int brand, int role, int mode) {
  if (role == 0) return "wifi reload &";
  const auto row = kBringUp.find(std::to_string(brand) + " " + std::to_string(role) + " " + std::to_string(mode));
  if (row != kBringUp.end()) return "wifi reload && " + row->second;
  return brand == 1 && role == 1 ? "wifi reload &" : "";  // the controllers of tesmir alone
}

TEST(WifiReloadCommand, EveryCombination) {
  for (int brand = 0; brand < 3; ++brand)
    for (int role = 0; role < 3; ++role)
      for (const int mode : kModes) {
        const std::string command = reload::wifi_reload_command(brand, role, mode).text;
        EXPECT_EQ(command, expected_reload(brand, role, mode)) << brand << " " << role << " " << mode;
        EXPECT_LT(command.size(), 64U);  // the platform's buffer
      }
}

TEST(ChainCommand, EveryCombination) {
  const std::string head =
      "/etc/init.d/repacd update_bss_config && /etc/init.d/wsplcd restart_after_config_change && sleep 30 && ";
  const std::map<int, std::string> tesmir{{0, "wifi multi_up mld1 mld2 mld3 mld5 mld7 mld9 mld11 &"},
                                          {1, "wifi multi_up mld1 mld2 mld3 mld4 mld6 mld8 mld10 &"},
                                          {2, "wifi multi_up mld1 mld2 mld3 mld5 mld6 mld8 mld10 &"}};
  for (const int mode : kModes) {
    EXPECT_EQ(reload::chain_command(0, mode).text, head + "wifi multi_up mld1 mld2 mld4 mld5 mld6 &");
    const auto row = tesmir.find(mode);
    EXPECT_EQ(reload::chain_command(1, mode).text, row == tesmir.end() ? "" : head + row->second) << mode;
    EXPECT_EQ(reload::chain_command(2, mode).text, "");
  }
}

TEST(Unsupported, IsACombinationWithoutARow) {
  for (int brand = 0; brand < 3; ++brand)
    for (const int mode : kModes) {
      const bool has_chain = brand == 0 || (brand == 1 && mode >= 0 && mode <= 2);
      EXPECT_EQ(reload::chain_command(brand, mode).is_known, has_chain) << brand << " " << mode;
      EXPECT_TRUE(reload::wifi_reload_command(brand, 0, mode).is_known);
      for (const int role : {1, 2}) {
        const std::string row = std::to_string(brand) + " " + std::to_string(role) + " " + std::to_string(mode);
        EXPECT_EQ(reload::wifi_reload_command(brand, role, mode).is_known, kBringUp.contains(row)) << row;
      }
    }
  EXPECT_EQ(reload::unsupported(0, 7), "Not supported meshMode(7) for ORVANE device");
  EXPECT_EQ(reload::unsupported(1, -1), "Not supported meshMode(-1) for TESMIR device");
  EXPECT_EQ(reload::unsupported(2, 7), "Not supported device_id(2)");
}

}  // namespace

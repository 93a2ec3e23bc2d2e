// What the repeater gives to the `uci` tool.
#include "repeater/uci_commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_log.h"
#include "fake_tools.h"
#include "platform/log.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

TEST(UciCommands, RunInTheirOrderWhateverBecomesOfThem) {
  FakeTools tools;
  tools.provide("uci", "exit 1");
  uci_command("set wireless.ath03.disabled=0");
  uci_commit("wireless", "network");
  EXPECT_THAT(tools.calls(),
              ElementsAre("uci set wireless.ath03.disabled=0", "uci commit wireless", "uci commit network"));
}

TEST(UciCommands, AddressAnOptionOfTheWirelessPackage) {
  FakeTools tools;
  tools.provide("uci");
  set_wireless("ath13", "network", "lan");
  delete_wireless("ath13", "mld");
  set_aps_disabled("1");
  EXPECT_THAT(tools.calls(), ElementsAre("uci set wireless.ath13.network=lan", "uci delete wireless.ath13.mld",
                                         "uci set wireless.ath02.disabled=1", "uci set wireless.ath12.disabled=1",
                                         "uci set wireless.ath22.disabled=1"));
  EXPECT_EQ(wireless_option("mld4", "mld_ssid"), "wireless.mld4.mld_ssid");
}

TEST(UciCommands, CarryAValueAsOneArgumentWhateverItHolds) {
  FakeTools tools;
  tools.provide("uci", "printf '<%s>' \"$@\" >/tmp/uci_commands_test");
  for (const char* value : {"Bob's net", "$(touch /tmp/parsed)", "`x` \" \\ ;|&", "a\nb", "%s%n", ""}) {
    uci_set_value("wireless.ath03.ssid", value);
    EXPECT_EQ(platform::read_file("/tmp/uci_commands_test"), std::string("<set><wireless.ath03.ssid=") + value + ">");
  }
  EXPECT_FALSE(platform::file_exists("/tmp/parsed"));
  std::filesystem::remove("/tmp/uci_commands_test");
}

TEST(StoredUplink, IsReadOrNothing) {
  router_state::config("repeater", package_text::section("repeater", "repeater_band",
                                                         {{"mlo", "12345"}, {"repeater_select_band", "2.4GHz and"}}));
  EXPECT_EQ(read_mlo_variant(), "123");
  EXPECT_EQ(read_select_band(), "2.4GHz ");
  router_state::config("repeater", package_text::section("repeater", "repeater_band", {{"other", "1"}}));
  EXPECT_EQ(read_mlo_variant(), std::nullopt);
  EXPECT_EQ(read_select_band(), std::nullopt);
}

TEST(ReadCompatiMode, IsANumberOrNoneWhichItsCallerTells) {
  CapturedLog log;
  for (const auto& [text, number] : {std::pair{"1", 1}, {"0", 0}, {"2x", 2}, {"x", 0}}) {
    router_state::config("repeater", package_text::section("compatiMode", "compatiMode", {{"value", text}}));
    EXPECT_EQ(read_compati_mode("caller"), number) << text;
  }
  log.texts();
  router_state::no_config("repeater");
  EXPECT_EQ(read_compati_mode("caller"), 0);
  EXPECT_THAT(log.texts(), Contains("get compatiModevalue error\n"));
}

}  // namespace

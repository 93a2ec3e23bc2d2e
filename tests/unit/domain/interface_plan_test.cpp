// The slot tables, row by row.
#include "domain/interface_plan.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::string text(const char* value) { return value == nullptr ? "-" : value; }

std::string row_text(const SsidSlot& slot) {
  return text(slot.ssid_name) + "|" + text(slot.band) + "|" + text(slot.ifname) + "|" + text(slot.radio) + "|" +
         text(slot.mld) + "|" + std::to_string(slot.link_id) + "|" + std::to_string(slot.mlo_mode);
}

template <class Slots>
std::vector<std::string> rows(const Slots& slots) {
  std::vector<std::string> texts;
  for (const SsidSlot& slot : slots) texts.push_back(row_text(slot));
  return texts;
}

TEST(SsidSlots, OfARouter) {
  const std::vector<std::string> expected{
      "SSID1|2.4GHz|ath0|wifi0|mld1|0|0", "SSID2|2.4GHz|ath01|wifi0|mld4|0|0", "SSID3|2.4GHz|ath04|wifi0|mld7|0|0",
      "SSID4|5GHz|ath1|wifi1|mld2|1|0",   "SSID5|5GHz|ath11|wifi1|mld5|1|0",   "SSID6|5GHz|ath14|wifi1|mld8|1|0",
      "SSID7|6GHz|ath2|wifi2|mld3|2|0",   "SSID8|6GHz|ath21|wifi2|mld6|2|0",   "SSID9|6GHz|ath24|wifi2|mld9|2|0",
      "MLO SSID|2.4GHz|-|-|-|0|0",        "Mesh SSID|5GHz,6GHz|-|-|-|0|0"};
  for (const char* op_mode : {"router", "ap", "", "r", "rex", "RE"}) EXPECT_EQ(rows(ssid_slots(op_mode)), expected);
}

TEST(SsidSlots, OfARepeater) {
  EXPECT_EQ(rows(ssid_slots("re")),
            (std::vector<std::string>{"SSID1|2.4GHz|ath0|wifi0|mld1|0|0", "SSID2|2.4GHz|ath02|wifi0|mld4|0|0",
                                      "SSID3|5GHz|ath1|wifi1|mld2|1|0", "SSID4|5GHz|ath12|wifi1|mld5|1|0",
                                      "SSID5|6GHz|ath2|wifi2|mld3|2|0", "SSID6|6GHz|ath22|wifi2|mld6|2|0",
                                      "MLO SSID|2.4GHz|-|-|-|0|0", "Mesh SSID|5GHz|-|-|-|0|0"}));
}

TEST(MloInterfaces, ByMode) {
  EXPECT_EQ(rows(kMloInterfaces),
            (std::vector<std::string>{"-|2.4GHz,5GHz|ath05|wifi0|mld0|0|0", "-|2.4GHz,5GHz|ath05|wifi0|mld0|0|1",
                                      "-|2.4GHz,6GHz|ath05|wifi0|mld0|0|2", "-|5GHz,6GHz|ath15|wifi1|mld0|0|3",
                                      "-|2.4GHz,5GHz,6GHz|ath05|wifi0|mld0|0|4"}));
  for (int mode = 0; mode < 5; ++mode) {
    ASSERT_NE(find_mlo_interface(mode), nullptr);
    EXPECT_EQ(find_mlo_interface(mode)->mlo_mode, mode);
  }
  for (const int mode : {-1, 5, 1000000}) EXPECT_EQ(find_mlo_interface(mode), nullptr);
}

TEST(FindWirelessConfig, FindsEverySlotOfItsTableAlone) {
  for (const SsidSlot& slot : kRouterSlots) EXPECT_EQ(find_wireless_config(0, slot.ssid_name), &slot);
  for (const SsidSlot& slot : kRepeaterSlots) EXPECT_EQ(find_wireless_config(1, slot.ssid_name), &slot);
  EXPECT_EQ(find_wireless_config(1, "SSID7"), nullptr);
  for (const char* name : {"", "SSID0", "SSID10", "ssid1", "SSID1 ", "MLO", "Mesh SSIDs"}) {
    EXPECT_EQ(find_wireless_config(0, name), nullptr) << name;
  }
  EXPECT_EQ(find_wireless_config(0, nullptr), nullptr);
}

TEST(InterfacePlan, NamesInTheOrderOfTheBands) {
  for (std::size_t band = 0; band < 3; ++band) {
    const std::string number = std::to_string(band);
    EXPECT_EQ(kRadios[band].section, "wifi" + number);
    EXPECT_EQ(kMainSsids[band], "ath" + number);
    EXPECT_EQ(kGuestSsids[band], "ath" + number + "1");
    EXPECT_EQ(kBackhaulSsids[band], "ath" + number + "2");
    EXPECT_EQ(kStations[band], "ath" + number + "3");
    EXPECT_EQ(kCopySsids[band], "ath" + number + "4");
    EXPECT_EQ(kMloLinks[band], "ath" + number + "5");
  }
  EXPECT_STREQ(kRadios[0].led, "led_2g");
  EXPECT_STREQ(kRadios[1].led, "led_5g");
  EXPECT_STREQ(kRadios[2].led, "led_6g");
}

}  // namespace

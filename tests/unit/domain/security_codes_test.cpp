// What is written for each wifiSecurity code.
#include "domain/security_codes.h"

#include <string>

#include <gtest/gtest.h>

namespace {

std::string text(const security::Writing* writing) {
  if (writing == nullptr) return "nothing";
  std::string text;
  for (const security::Option& option : writing->sets) text += std::string(option.name) + "=" + option.value + " ";
  if (writing->has_key) text += "key ";
  for (const char* option : writing->deletes) text += std::string("-") + option + " ";
  return text;
}

TEST(SecurityWriting, OfAnAccessPoint) {
  const std::string wpa2 = "encryption=psk2+ccmp key -sae -sae_confirm_immediate -force_invalid_group -ieee80211w ";
  const std::string wpa3 = "encryption=ccmp sae=1 sae_confirm_immediate=1 force_invalid_group=1 ieee80211w=2 key ";
  const std::string mixed =
      "encryption=psk2+ccmp sae=1 sae_confirm_immediate=1 force_invalid_group=1 ieee80211w=1 key ";
  const std::string open_deletes = "-key -sae -sae_confirm_immediate -force_invalid_group -ieee80211w ";
  using security::find_writing;
  using security::kSsidWritings;
  using security::kSsidWritings6g;
  EXPECT_EQ(text(find_writing(kSsidWritings, 1)), "encryption=none " + open_deletes);
  EXPECT_EQ(text(find_writing(kSsidWritings, 2)), wpa2);
  EXPECT_EQ(text(find_writing(kSsidWritings, 3)), wpa3);
  EXPECT_EQ(text(find_writing(kSsidWritings, 4)), mixed);
  EXPECT_EQ(text(find_writing(kSsidWritings6g, 1)), "owe=1 encryption=ccmp " + open_deletes);
  EXPECT_EQ(text(find_writing(kSsidWritings6g, 2)), wpa2);
  EXPECT_EQ(text(find_writing(kSsidWritings6g, 3)), wpa3 + "-owe ");
  EXPECT_EQ(text(find_writing(kSsidWritings6g, 4)), mixed);
}

TEST(SecurityWriting, OfAnMloLink) {
  using security::find_writing;
  EXPECT_EQ(text(find_writing(security::kMloWritings, 1)), "encryption=ccmp owe=1 -key -sae ");
  EXPECT_EQ(text(find_writing(security::kMloWritings, 2)), "encryption=psk2+ccmp key -sae -owe ");
  EXPECT_EQ(text(find_writing(security::kMloWritings, 3)), "encryption=ccmp sae=1 key -owe ");
  EXPECT_EQ(text(find_writing(security::kMloWritings, 4)), "encryption=psk2+ccmp sae=1 key -owe ");
}

TEST(SecurityWriting, OtherCodesWriteNothing) {
  for (const int code : {-1, 0, 5, 100, -2147483647 - 1}) {
    EXPECT_EQ(security::find_writing(security::kSsidWritings, code), nullptr);
    EXPECT_EQ(security::find_writing(security::kSsidWritings6g, code), nullptr);
    EXPECT_EQ(security::find_writing(security::kMloWritings, code), nullptr);
  }
}

}  // namespace

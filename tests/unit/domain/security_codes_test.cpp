// What UCI says for each wifiSecurity code, read and written.
#include "domain/security_codes.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "wireless/router_state.h"

namespace {

struct Case {
  std::string encryption;
  std::optional<std::string> owe;
  std::optional<std::string> sae;
  std::string ifname;
  bool mesh;
};

int expected_code(const Case& c) {
  if (c.encryption == "none") return 1;
  if (c.encryption == "psk2") return 2;
  if (c.encryption == "ccmp") return c.owe == "1" ? 1 : 3;
  if (c.encryption != "psk2+ccmp") return -1;
  if (c.sae != "1") return 2;
  return c.ifname == "ath2" && c.mesh ? 3 : 4;
}

int read_code(const Case& c) {
  std::string text = "config wifi-iface '" + c.ifname + "'\n\toption encryption '" + c.encryption + "'\n";
  if (c.owe) text += "\toption owe '" + *c.owe + "'\n";
  if (c.sae) text += "\toption sae '" + *c.sae + "'\n";
  router_state::config("wireless", text);
  router_state::mesh(c.mesh ? 1 : 0, 1, 0);
  int code = -1;
  const int result = get_encryption_mode_value(c.ifname.c_str(), code);
  EXPECT_EQ(result == 0, code != -1);
  return code;
}

TEST(GetEncryptionModeValue, EveryCombination) {
  for (const char* encryption : {"none", "psk2", "ccmp", "psk2+ccmp", "psk", "wep", "NONE", "psk2+ccmp "})
    for (const auto& owe :
         {std::optional<std::string>(), std::optional<std::string>("0"), std::optional<std::string>("1")})
      for (const auto& sae :
           {std::optional<std::string>(), std::optional<std::string>("0"), std::optional<std::string>("1")})
        for (const char* ifname : {"ath0", "ath2", "ath21", "ath25"})
          for (const bool mesh : {false, true}) {
            const Case c{encryption, owe, sae, ifname, mesh};
            EXPECT_EQ(read_code(c), expected_code(c))
                << encryption << " owe " << owe.value_or("-") << " sae " << sae.value_or("-") << ifname << mesh;
          }
}

TEST(GetEncryptionModeValue, FailsWithoutAnAccessPoint) {
  router_state::config("wireless", "config wifi-iface 'ath0'\n");
  int code = 7;
  for (const char* ifname : {"ath0", "ath9", "", static_cast<const char*>(nullptr)}) {
    EXPECT_NE(get_encryption_mode_value(ifname, code), 0);
  }
  EXPECT_EQ(code, 7);
}

TEST(GetEncryptionModeValue, TreatsAMeshThatCannotBeReadAsOff) {
  router_state::config("wireless", "config wifi-iface 'ath2'\n\toption encryption 'psk2+ccmp'\n\toption sae '1'\n");
  router_state::no_config("button_mesh");
  int code = 0;
  EXPECT_EQ(get_encryption_mode_value("ath2", code), 0);
  EXPECT_EQ(code, 4);
}

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

// Reading and writing agree: what a code writes reads as that code.
TEST(SecurityWriting, ReadsBackAsTheSameCode) {
  for (const auto& [table, ifname] : {std::pair(std::span<const security::Writing>(security::kSsidWritings), "ath0"),
                                      std::pair(std::span<const security::Writing>(security::kSsidWritings6g), "ath21"),
                                      std::pair(std::span<const security::Writing>(security::kMloWritings), "ath25")})
    for (const int before : {1, 2, 3, 4})
      for (const int after : {1, 2, 3, 4}) {
        router_state::config("wireless", std::string("config wifi-iface '") + ifname + "'\n");
        security::write(*security::find_writing(table, before), "wireless", ifname, "12345678");
        security::write(*security::find_writing(table, after), "wireless", ifname, "12345678");
        int code = 0;
        EXPECT_EQ(get_encryption_mode_value(ifname, code), 0);
        EXPECT_EQ(code, after) << ifname << " after " << before;
      }
}

}  // namespace

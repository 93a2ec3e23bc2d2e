// What UCI says for each wifiSecurity code, read and written.
#include "wireless/security_options.h"

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

// Reading and writing agree: what a code writes reads as that code.
TEST(SecurityWriting, ReadsBackAsTheSameCode) {
  for (const auto& [table, ifname] : {std::pair(std::span<const security::Writing>(security::kSsidWritings), "ath0"),
                                      std::pair(std::span<const security::Writing>(security::kSsidWritings6g), "ath21"),
                                      std::pair(std::span<const security::Writing>(security::kMloWritings), "ath25")})
    for (const int before : {1, 2, 3, 4})
      for (const int after : {1, 2, 3, 4}) {
        router_state::config("wireless", std::string("config wifi-iface '") + ifname + "'\n");
        security::write(*security::find_writing(table, before), uci::Section("wireless", ifname), "12345678");
        security::write(*security::find_writing(table, after), uci::Section("wireless", ifname), "12345678");
        int code = 0;
        EXPECT_EQ(get_encryption_mode_value(ifname, code), 0);
        EXPECT_EQ(code, after) << ifname << " after " << before;
      }
}

}  // namespace

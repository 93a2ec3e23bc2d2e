// The small rules of the wireless settings' writers.
#include "wireless/setting/setting_write.h"

#include <string>

#include <gtest/gtest.h>

#include "domain/mesh_codes.h"
#include "uci_access.h"
#include "wireless/router_state.h"

namespace {

TEST(CheckWifiPassword, ByLengthAndAlphabet) {
  EXPECT_EQ(check_wifi_password(nullptr), 0);
  for (std::size_t length = 0; length <= 70; ++length) {
    const bool is_plain = length == 0 || (length >= 8 && length <= 63);
    EXPECT_EQ(check_wifi_password(std::string(length, 'z').c_str()), is_plain ? 0 : 1) << length;
    const bool is_hex = is_plain || length == 64;
    EXPECT_EQ(check_wifi_password(std::string(length, 'F').c_str()), is_hex ? 0 : 1) << length;
  }
  EXPECT_EQ(check_wifi_password("\x01\t~ \"'\\\x7f"), 0);
  EXPECT_EQ(check_wifi_password("1234567\x80"), 1);
  EXPECT_EQ(check_wifi_password("パスワード"), 1);
  EXPECT_EQ(check_wifi_password((std::string(63, 'a') + "g").c_str()), 1);
  EXPECT_EQ(check_wifi_password((std::string(63, 'a') + "\xe9").c_str()), 1);
}

TEST(EscapeSingleQuotes, ExpandsEachToFourCharacters) {
  std::string out;
  EXPECT_EQ(escape_single_quotes("it's", out, kEscapedPasswordSize), 0);
  EXPECT_EQ(out, R"(it'\''s)");
  EXPECT_EQ(escape_single_quotes("", out, kEscapedPasswordSize), 0);
  EXPECT_EQ(out, "");
}

TEST(EscapeSingleQuotes, FailsOnBoundsAndNothing) {
  std::string out = "x";
  EXPECT_NE(escape_single_quotes(nullptr, out, kEscapedPasswordSize), 0);
  EXPECT_EQ(out, "");
  EXPECT_NE(escape_single_quotes("a", out, kEscapedPasswordSize - 1), 0);
  EXPECT_EQ(escape_single_quotes(std::string(65, '\'').c_str(), out, kEscapedPasswordSize), 0);
  EXPECT_EQ(out.size(), 260U);
  EXPECT_NE(escape_single_quotes(std::string(66, '\'').c_str(), out, kEscapedPasswordSize), 0);
  EXPECT_NE(escape_single_quotes(std::string(255, '\'').c_str(), out, kEscapedPasswordSize), 0);
  EXPECT_EQ(escape_single_quotes(std::string(260, 'a').c_str(), out, kEscapedPasswordSize), 0);
  EXPECT_NE(escape_single_quotes(std::string(261, 'a').c_str(), out, kEscapedPasswordSize), 0);
}

TEST(MeshModeOfBand, ByLabel) {
  for (const int fallback : {0, 1, 2}) {
    EXPECT_EQ(mesh_mode_of_band("2.4GHz,5GHz", fallback), 1);
    EXPECT_EQ(mesh_mode_of_band("5GHz,6GHz", fallback), 2);
    EXPECT_EQ(mesh_mode_of_band("2.4GHz,5GHz,6GHz", fallback), 0);
    for (const char* other : {"", "5GHz", "2.4GHz,6GHz", "2.4GHz, 5GHz"}) {
      EXPECT_EQ(mesh_mode_of_band(other, fallback), fallback) << other;
    }
  }
}

TEST(GetMeshChangeFlags, EveryCombination) {
  for (const int enable : {0, 1})
    for (const int mode : {0, 1, 2}) {
      router_state::config("button_mesh", "config easymesh 'easymesh'\n\toption enable '" + std::to_string(enable) +
                                              "'\n\toption mode '" + std::to_string(mode) + "'\n");
      router_state::config("repacd", "config MAPConfig 'MAPConfig'\n\toption BackhaulKey 'old key'\n");
      for (const int requested : {0, 1})
        for (const int requested_mode : {0, 1, 2})
          for (const char* key : {"old key", "new key", ""}) {
            const int expected = (requested != enable ? 1 : 0) + (requested_mode != mode ? 2 : 0) +
                                 (std::string(key) != "old key" ? 4 : 0);
            EXPECT_EQ(get_mesh_change_flags(requested, requested_mode, key), expected);
          }
    }
}

// A key of 64 bytes fills its buffer: it is compared whole, a longer one by what fits.
TEST(GetMeshChangeFlags, ComparesTheKeyAsItIsRead) {
  const std::string key(64, 'k');
  router_state::config("button_mesh", "config easymesh 'easymesh'\n\toption enable '0'\n\toption mode '1'\n");
  router_state::config("repacd", "config MAPConfig 'MAPConfig'\n\toption BackhaulKey '" + key + "'\n");
  EXPECT_EQ(get_mesh_change_flags(0, 1, key), 0);
  EXPECT_EQ(get_mesh_change_flags(0, 1, key.substr(1)), 4);
  router_state::config("repacd", "config MAPConfig 'MAPConfig'\n\toption BackhaulKey '" + key + "xyz'\n");
  EXPECT_EQ(get_mesh_change_flags(0, 1, key), 0);
}

std::string map_options() { return platform::read_file("/etc/config/repacd").value_or(""); }

TEST(SetRepacdInfo, AuthByCode) {
  const struct {
    int code;
    const char* expected;
  } rows[] = {{2, "\toption FHOverrideAuthType2G '0'\n"},
              {3, "\toption FHOverrideAuthType2G '12'\n"},
              {4, "\toption FHOverrideAuthType2G '1'\n"},
              {1, "\toption FHOverrideKey2G ' '\n"}};
  for (const auto& row : rows) {
    router_state::config("repacd", "config MAPConfig 'MAPConfig'\n");
    WirelessIfaceInfo info;
    info.ssid = "name";
    info.password = "password";
    info.wifi_security = row.code;
    EXPECT_EQ(set_repacd_info(info, "ath0"), 0);
    EXPECT_NE(map_options().find(row.expected), std::string::npos) << map_options();
    EXPECT_NE(map_options().find("FHOverrideSSID2G 'name'"), std::string::npos);
    EXPECT_EQ(map_options().find("FHOverrideKey2G 'password'") != std::string::npos, row.code != 1);
    EXPECT_EQ(map_options().find("FHOverrideAuthType2G") != std::string::npos, row.code != 1);
  }
}

TEST(SetRepacdInfo, WithoutTextWithoutRowAndWithWrongCodes) {
  router_state::config("repacd", "config MAPConfig 'MAPConfig'\n");
  WirelessIfaceInfo info;
  info.wifi_security = 4;
  EXPECT_EQ(set_repacd_info(info, "ath01"), 0);
  EXPECT_EQ(map_options(), "config MAPConfig 'MAPConfig'\n");
  EXPECT_EQ(set_repacd_info(info, "ath1"), 0);
  EXPECT_EQ(map_options().find("SSID"), std::string::npos);
  EXPECT_EQ(map_options().find("Key"), std::string::npos);
  EXPECT_NE(set_repacd_info(info, nullptr), 0);
  for (const int code : {-1, 0, 5, 1000000}) {
    info.wifi_security = code;
    EXPECT_NE(set_repacd_info(info, "ath0"), 0);
    EXPECT_EQ(set_repacd_info(info, "ath02"), 0);
  }
}

}  // namespace

// Which passwords a slot may have.
#include "wireless/setting/ssid_write.h"

#include <string>

#include <gtest/gtest.h>

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

}  // namespace

// The limits of commands, by kind.
#include "platform/command_limits.h"

#include <gtest/gtest.h>

namespace {

using platform::limit_of_argv;
using platform::limit_of_shell;

TEST(LimitOfShell, FollowsTheKindOfTheCommand) {
  struct Row {
    const char* command;
    unsigned int seconds;
  };
  for (const Row& row :
       {Row{"uci commit wireless", 20}, Row{"arp -a", 20}, Row{"iw dev mld1 scan flush &", 60},
        Row{"/etc/init.d/dnsmasq restart", 180}, Row{"wifi reload &", 180}, Row{"/usr/sbin/orvanehota -c", 120},
        Row{"/usr/sbin/tesmirhota -v", 300}, Row{"/usr/sbin/orvanehota -d", 900},
        Row{"/sbin/sysupgrade --create-backup /tmp/x", 600}, Row{"inetchk -46 -woi ; echo $?", 60}, Row{"", 20}}) {
    EXPECT_EQ(limit_of_shell(row.command), row.seconds) << row.command;
  }
}

TEST(LimitOfShell, GrowsByTheSleepsThatTheCommandIsGiven) {
  EXPECT_EQ(limit_of_shell(R"((sleep 5; echo "td s2"; sleep 5; ) | emt)"), 30U);
  EXPECT_EQ(limit_of_shell("/etc/init.d/x && sleep 30 && wifi reload &"), 210U);
  EXPECT_EQ(limit_of_shell("sleep"), 20U);
  EXPECT_EQ(limit_of_shell("sleep x"), 20U);
}

TEST(LimitOfArgv, LooksAtTheProgramAndItsFirstWordOnly) {
  EXPECT_EQ(limit_of_argv({"jose", "jwe", "enc"}), 20U);
  EXPECT_EQ(limit_of_argv({"uci", "set", "wireless.ath03.ssid=/etc/init.d/ wifi sleep 9999"}), 20U);
  EXPECT_EQ(limit_of_argv({"/etc/init.d/dnsmasq", "restart"}), 180U);
  EXPECT_EQ(limit_of_argv({}), 20U);
}

}  // namespace

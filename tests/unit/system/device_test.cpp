// First lines of files and commands, the device id, and the mode switch.
#include "system/device.h"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_log.h"
#include "fake_tools.h"
#include "wireless/router_state.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kFile = "/tmp/device_test";
constexpr const char* kGpio = "/sys/kernel/debug/gpio";

TEST(GetFileInfo, TakesTheFirstLineUpToItsBound) {
  struct Row {
    const char* content;
    const char* line;
  };
  for (const Row& row : {Row{"1.02\n", "1.02"}, Row{"1.02\r\n3\n", "1.02\r"}, Row{"123456789", "1234567"},
                         Row{"1234567\n", "1234567"}, Row{"\nsecond", ""}, Row{"12345678\n", "1234567"}}) {
    router_state::write(kFile, row.content);
    std::string line = "before";
    EXPECT_EQ(getFileInfo(kFile, &line, 8), 0) << row.content;
    EXPECT_EQ(line, row.line) << row.content;
  }
  std::filesystem::remove(kFile);
}

TEST(GetFileInfo, LeavesTheTextWhereThereIsNone) {
  const CapturedLog log;
  std::string line = "before";
  EXPECT_EQ(getFileInfo("/tmp/nosuch", &line, 8), -1);
  router_state::write(kFile, "");
  EXPECT_EQ(getFileInfo(kFile, &line, 8), -1);
  EXPECT_EQ(getFileInfo("/tmp", &line, 8), -1);
  EXPECT_EQ(line, "before");
  std::filesystem::remove(kFile);
}

TEST(GetFileInfo, TellsOfAMissingArgument) {
  CapturedLog log;
  std::string line;
  EXPECT_EQ(getFileInfo(nullptr, &line, 8), -1);
  EXPECT_EQ(getFileInfo(kFile, nullptr, 8), -1);
  EXPECT_THAT(log.texts(), ElementsAre("filepath or info pointer is NULL\n", "filepath or info pointer is NULL\n"));
}

TEST(RunCmdFirstLine, TakesTheFirstLineOfWhateverTheCommandCameTo) {
  std::string line;
  EXPECT_EQ(run_cmd_first_line("echo one; echo two", line), 0);
  EXPECT_EQ(line, "one");
  EXPECT_EQ(run_cmd_first_line("printf three; exit 3", line), 0);
  EXPECT_EQ(line, "three");
  EXPECT_EQ(run_cmd_first_line("head -c 5000 /dev/zero | tr '\\0' x", line), 0);
  EXPECT_EQ(line.size(), 1024U);
  EXPECT_EQ(run_cmd_first_line("true", line), -1);
  EXPECT_EQ(line.size(), 1024U);
}

// The kernel's list with these levels of the switch's three lines.
void set_lines(const char* gpio38, const char* gpio10, const char* gpio39) {
  const auto line = [](const char* name, const char* level) {
    return std::string(" ") + name + "  in 0 " + level + " 8mA\n";
  };
  router_state::write(
      kGpio, "gpiochip0: GPIOs 0-52\n" + line("gpio10", gpio10) + line("gpio38", gpio38) + line("gpio39", gpio39));
}

TEST(ModeSwitch, StandsWhereTheFirstActiveLineIs) {
  struct Row {
    const char* gpio38;
    const char* gpio10;
    const char* gpio39;
    int state;
  };
  for (const Row& row : {Row{"low", "high", "high", 1}, Row{"high", "low", "high", 2}, Row{"high", "high", "low", 0},
                         Row{"low", "low", "low", 1}, Row{"high", "low", "low", 2}, Row{"high", "high", "high", -1},
                         Row{"lower", "LOW", "", -1}}) {
    set_lines(row.gpio38, row.gpio10, row.gpio39);
    int state = 7;
    get_switch_state(state);
    EXPECT_EQ(state, row.state) << row.gpio38 << ' ' << row.gpio10 << ' ' << row.gpio39;
  }
  set_lines("low", "high", "high");
  EXPECT_EQ(check_GpioStatus(38), 1);
  EXPECT_EQ(check_GpioStatus(10), 0);
  std::filesystem::remove(kGpio);
}

TEST(ModeSwitch, StandsNowhereWithoutTheKernelsList) {
  std::filesystem::remove(kGpio);
  int state = 7;
  get_switch_state(state);
  EXPECT_EQ(state, -1);
}

}  // namespace

// Messages on the console. The root of unit tests has a /dev of its own, without one.
#include "platform/console.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "platform/file.h"

namespace {

TEST(ConsolePrint, WritesItsValuesAsTheyAre) {
  ASSERT_TRUE(platform::write_file("/tmp/console", ""));
  std::error_code error;
  std::filesystem::create_symlink("/tmp/console", "/dev/console", error);
  if (error) GTEST_SKIP() << "no console can be made here: " << error.message();
  EXPECT_EQ(console_print("%s %d\n", "100% $(x)", 7), 12);
  EXPECT_EQ(platform::read_file("/tmp/console"), "100% $(x) 7\n");
  std::filesystem::remove("/dev/console");
  std::filesystem::remove("/tmp/console");
}

}  // namespace

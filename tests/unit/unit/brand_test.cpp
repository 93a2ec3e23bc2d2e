// Which brand the file /tmp/deviceid makes of the unit, by each of its readers.
#include "unit/brand.h"

#include <array>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "platform/file.h"

namespace {

TEST(GetDeviceId, KeepsTheLastPieceReadNewlineIncluded) {
  std::array<char, 16> out{};
  ASSERT_TRUE(platform::write_file("/tmp/deviceid", "0221\n"));
  EXPECT_EQ(getDeviceId(out.data(), out.size()), 0);
  EXPECT_STREQ(out.data(), "0221\n");
  ASSERT_TRUE(platform::write_file("/tmp/deviceid", "0221\n0121-and-more"));
  EXPECT_EQ(getDeviceId(out.data(), out.size()), 0);
  EXPECT_STREQ(out.data(), "d-more");
}

TEST(GetDeviceId, RefusesASmallBufferWithoutOpeningTheFile) {
  std::array<char, 8> out{'k', 0};
  std::remove("/tmp/deviceid");
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(getDeviceId(out.data(), 4), 1);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(getDeviceId(out.data(), out.size()), 1);
  EXPECT_STREQ(out.data(), "k");
}

TEST(GetBrandIndex, MapsTheDeviceId) {
  struct Row {
    const char* id;
    int index;
  };
  for (const Row& row : {Row{"0221\n", kBrandOrvane}, Row{"0121", kBrandTesmir}, Row{"0321\n", kBrandOther},
                         Row{"", kBrandOther}, Row{"02", kBrandOther}}) {
    ASSERT_TRUE(platform::write_file("/tmp/deviceid", row.id));
    EXPECT_EQ(get_brand_index(), row.index) << row.id;
  }
  std::remove("/tmp/deviceid");
  EXPECT_EQ(get_brand_index(), kBrandTesmir);
}

TEST(Brand, IsTheRowOfTheIndex) {
  ASSERT_TRUE(platform::write_file("/tmp/deviceid", "0221\n0121\n"));
  EXPECT_EQ(&unit::brand(), &brands::kBrands[0]);
  std::remove("/tmp/deviceid");
  EXPECT_EQ(&unit::brand(), &brands::kBrands[1]);
}

TEST(BrandOfDeviceId, LooksAtTheLastPieceAndTellsOfAMissingFile) {
  ASSERT_TRUE(platform::write_file("/tmp/deviceid", "0221\n0121\n"));
  EXPECT_EQ(unit::brand_of_device_id(), &brands::kBrands[1]);
  ASSERT_TRUE(platform::write_file("/tmp/deviceid", "0999"));
  EXPECT_EQ(unit::brand_of_device_id(), &brands::kBrands[2]);
  std::remove("/tmp/deviceid");
  EXPECT_EQ(unit::brand_of_device_id(), nullptr);
}

TEST(BrandOfDeviceIdLine, TakesTheFirstLineWhole) {
  struct Row {
    const char* file;
    const char* line;
    int index;
  };
  for (const Row& row : {Row{"0121", "0121", kBrandTesmir}, Row{"0121\n0221\n", "0121", kBrandTesmir},
                         Row{"0121\r\n", "0121\r", kBrandTesmir}, Row{"0221\n", "0221", kBrandOrvane},
                         Row{"0121x\n", "0121x", kBrandOther}, Row{"\n0121\n", "", kBrandOther},
                         Row{"", "", kBrandOther}, Row{"0121567890123456789", "012156789012345", kBrandOther}}) {
    ASSERT_TRUE(platform::write_file("/tmp/deviceid", row.file));
    EXPECT_EQ(unit::device_id_line(), row.line) << row.file;
    EXPECT_EQ(brands::index_of(unit::brand_of_device_id_line()), row.index) << row.file;
  }
  std::remove("/tmp/deviceid");
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(brands::index_of(unit::brand_of_device_id_line()), kBrandOther);
  EXPECT_TRUE(::testing::internal::GetCapturedStderr().starts_with("info get fail.\n"));
}

std::string captured(int (*ask)(char*), char* out, int expected) {
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(ask(out), expected);
  return ::testing::internal::GetCapturedStderr();
}

TEST(BrandMessages, GoToStandardError) {
  std::array<char, 8> id{};
  std::remove("/tmp/deviceid");
  const std::string missing = captured([](char* out) { return getDeviceId(out, 8); }, id.data(), 1);
  EXPECT_NE(missing.find("open /tmp/deviceid failed."), std::string::npos) << missing;
  EXPECT_TRUE(missing.starts_with("\033[1;32m ")) << missing;
  const std::string other = captured([](char*) { return get_brand_index(); }, id.data(), kBrandTesmir);
  EXPECT_TRUE(other.starts_with("Error opening file: ")) << other;
  ASSERT_TRUE(platform::write_file("/tmp/deviceid", "0221\n"));
  const std::string read = captured([](char* out) { return getDeviceId(out, 8); }, id.data(), 0);
  EXPECT_NE(read.find("get deviceId,devIdBuf = 0221\n."), std::string::npos) << read;
  std::remove("/tmp/deviceid");
}

}  // namespace

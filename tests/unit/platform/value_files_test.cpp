// Files of one value.
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "platform/file.h"
#include "system_helpers.h"

namespace {

class TestFolder : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { std::filesystem::remove_all(folder_); }
  std::string file(const std::string& content) {
    std::string path = folder_ + "/file";
    EXPECT_TRUE(platform::write_file(path.c_str(), content));
    return path;
  }
  std::string folder_ = "/tmp/value_files_test";
};
using ReadValueFromFile = TestFolder;
using ReadStrvalueFromFile = TestFolder;

TEST_F(ReadValueFromFile, ReadsOneInteger) {
  EXPECT_EQ(read_value_from_file(file(" 42 rest\n").c_str()), 42);
  EXPECT_EQ(read_value_from_file(file("-7").c_str()), -7);
  EXPECT_EQ(read_value_from_file(file("abc").c_str()), -1);
  EXPECT_EQ(read_value_from_file(file("").c_str()), -1);
  EXPECT_EQ(read_value_from_file("/tmp/value_files_test/none"), -1);
}

TEST_F(ReadStrvalueFromFile, ReadsOneBoundedWord) {
  EXPECT_EQ(read_strvalue_from_file(file("\n  word next\n").c_str(), 32), "word");
  EXPECT_EQ(read_strvalue_from_file(file("longer-than-that").c_str(), 7), "longer");
  EXPECT_EQ(read_strvalue_from_file(file(" \n").c_str(), 32), std::nullopt);
  EXPECT_EQ(read_strvalue_from_file("/tmp/value_files_test/none", 32), std::nullopt);
}

}  // namespace

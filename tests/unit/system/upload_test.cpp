// Storing of uploads: whole or not at all, in a file of our own.
#include "system/upload.h"

#include <filesystem>
#include <string>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "platform/file.h"

namespace {

constexpr const char* kPath = "/tmp/upload_test/file";

class StoreUpload : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories("/tmp/upload_test"); }
  void TearDown() override { std::filesystem::remove_all("/tmp/upload_test"); }
};

TEST_F(StoreUpload, KeepsEveryByteForItsOwnerAlone) {
  const std::string bytes("a\0b\n", 4);
  EXPECT_EQ(store_upload({bytes, true}, kPath), Upload::kStored);
  EXPECT_EQ(platform::read_file(kPath), bytes);
  struct stat status {};
  ASSERT_EQ(stat(kPath, &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(StoreUpload, LeavesNothingOfABodyThatIsNotWhole) {
  EXPECT_EQ(store_upload({"half", false}, kPath), Upload::kCannotWrite);
  EXPECT_FALSE(platform::file_exists(kPath));
  EXPECT_EQ(store_upload({}, kPath), Upload::kCannotWrite);
  EXPECT_FALSE(platform::file_exists(kPath));
}

TEST_F(StoreUpload, ReplacesALinkInsteadOfWritingThroughIt) {
  ASSERT_TRUE(platform::write_file("/tmp/upload_test/other", "kept"));
  std::filesystem::create_symlink("/tmp/upload_test/other", kPath);
  EXPECT_EQ(store_upload({"new", true}, kPath), Upload::kStored);
  EXPECT_EQ(platform::read_file("/tmp/upload_test/other"), "kept");
  EXPECT_FALSE(std::filesystem::is_symlink(kPath));
}

TEST_F(StoreUpload, CannotTakeTheNameOfAFolder) {
  std::filesystem::create_directory(kPath);
  EXPECT_EQ(store_upload({"new", true}, kPath), Upload::kCannotOpen);
  EXPECT_TRUE(std::filesystem::is_directory(kPath));
}

}  // namespace

// The trailer of a backup file.
#include "system/backup_file.h"

#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/file.h"

namespace {

constexpr const char* kMd5OfAbc = "900150983cd24fb0d6963f7d28e17f72";

class BackupFile : public testing::Test {
 protected:
  void SetUp() override {
    platform::write_file("/tmp/deviceid", "0221\n");
    TearDown();
  }
  void TearDown() override {
    unlink(kUploadPath);
    unlink(kArchivePath);
  }
  static void upload(const std::string& content) { ASSERT_TRUE(platform::write_file(kUploadPath, content)); }
};

TEST_F(BackupFile, IsItsArchiveTheMd5AndTheBrandsId) {
  upload("abc");
  EXPECT_EQ(append_md5_to_file(kUploadPath), 0);
  EXPECT_EQ(append_device_id_to_file(kUploadPath), 0);
  EXPECT_EQ(platform::read_file(kUploadPath), std::string("abc") + kMd5OfAbc + "0221");
}

TEST_F(BackupFile, HasNoIdOfAnUnknownBrand) {
  platform::write_file("/tmp/deviceid", "0999\n");
  upload("abc");
  EXPECT_EQ(append_device_id_to_file(kUploadPath), 0);
  EXPECT_EQ(platform::read_file(kUploadPath), "abc");
  upload("abc0999");
  EXPECT_EQ(checkBackFileId(), 0);
}

TEST_F(BackupFile, IsSplitIntoAnArchiveThatIsItsOwnersAlone) {
  upload(std::string("abc") + kMd5OfAbc + "0221");
  EXPECT_EQ(checkBackFileId(), 1);
  ASSERT_TRUE(split_backup_file(kUploadPath, kArchivePath));
  EXPECT_EQ(platform::read_file(kArchivePath), "abc");
  struct stat status {};
  ASSERT_EQ(stat(kArchivePath, &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
  EXPECT_EQ(checkBackFileMd5(), 1);
  EXPECT_FALSE(platform::file_exists(kUploadPath));
  EXPECT_TRUE(platform::file_exists(kArchivePath));
}

TEST_F(BackupFile, HasNoTrailerWhereItIsTooShort) {
  std::string text = "before";
  upload("021");
  EXPECT_EQ(read_trailer_id(kUploadPath, text), -1);
  EXPECT_EQ(checkBackFileId(), 0);
  upload(std::string(kTrailer - 1, 'x'));
  EXPECT_EQ(read_trailer_md5(kUploadPath, text), -1);
  unlink(kUploadPath);
  EXPECT_EQ(read_trailer_id(kUploadPath, text), -1);
}

TEST_F(BackupFile, IsNotSplitWithoutAnArchive) {
  for (const std::string& content : {std::string(), std::string("x"), std::string(kTrailer, 'x')}) {
    upload(content);
    EXPECT_FALSE(split_backup_file(kUploadPath, kArchivePath));
    EXPECT_FALSE(platform::file_exists(kArchivePath));
    EXPECT_EQ(checkBackFileMd5(), 0);
  }
}

TEST_F(BackupFile, KeepsNoArchiveThatIsNotTheOneOfTheTrailer) {
  upload(std::string("abd") + kMd5OfAbc + "0221");
  ASSERT_TRUE(split_backup_file(kUploadPath, kArchivePath));
  EXPECT_EQ(checkBackFileMd5(), 0);
  EXPECT_FALSE(platform::file_exists(kArchivePath));
}

}  // namespace

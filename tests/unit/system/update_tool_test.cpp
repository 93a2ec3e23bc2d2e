// The update tool's commands, and what its files are taken for.
#include "system/update_tool.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_log.h"
#include "domain/brands.h"
#include "fake_tools.h"
#include "platform/file.h"
#include "waits.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kVersionStatus = "/tmp/HotaVersionStatus";
constexpr const char* kVerifyResult = "/tmp/Download_Verify_Result";

class UpdateTool : public ::testing::Test {
 protected:
  void SetUp() override {
    TearDown();
    waits::taken();
    tools_.provide("/usr/sbin/orvanehota");
    tools_.provide("/usr/sbin/tesmirhota");
  }
  void TearDown() override {
    for (const char* path : {kVersionStatus, kVerifyResult, kFirmwarePath}) std::filesystem::remove(path);
  }
  FakeTools tools_;
  CapturedLog log_;
};

TEST_F(UpdateTool, IsCountedInTheProcessList) {
  tools_.answer("ps",
                "  1 root init\n"
                "  7 root orvanehota -c\n"
                "  8 root /usr/sbin/tesmirhota -d\n"
                "  9 root grep hota -\n"
                " 10 root hotacron\n");
  EXPECT_EQ(count_running_tools(), 2);
  tools_.provide("ps");
  EXPECT_EQ(count_running_tools(), 0);
}

TEST_F(UpdateTool, HasAStatusOnceItHasLeftOne) {
  int status = -7;
  EXPECT_EQ(check_update_status(status), 1);
  EXPECT_EQ(status, -7);
  EXPECT_THAT(log_.texts(), ElementsAre("fopen failed.\n"));
  struct Row {
    const char* text;
    int status;
  };
  for (const Row& row : {Row{"1\n", 1}, Row{"0", 0}, Row{"", 0}, Row{"x", 0}, Row{"-1\r\n", -1}, Row{"12345", 123}}) {
    ASSERT_TRUE(platform::write_file(kVersionStatus, row.text));
    EXPECT_EQ(check_update_status(status), 0) << row.text;
    EXPECT_EQ(status, row.status) << row.text;
  }
}

TEST_F(UpdateTool, HasVerifiedOnlyWhatItSaysItHas) {
  int status = -7;
  EXPECT_EQ(check_download_fw_res(status), 1);
  EXPECT_EQ(status, -7);
  EXPECT_THAT(log_.texts(), ElementsAre("fopen failed\n"));
  struct Row {
    const char* text;
    int status;
  };
  for (const Row& row :
       {Row{"Verify Success\n", 0}, Row{"Verify Success and more", 0}, Row{"Verify Succes", -1},
        Row{" Verify Success", -1}, Row{"verify success", -1}, Row{"", -1}, Row{"\nVerify Success", -1}}) {
    ASSERT_TRUE(platform::write_file(kVerifyResult, row.text));
    EXPECT_EQ(check_download_fw_res(status), 0) << row.text;
    EXPECT_EQ(status, row.status) << row.text;
  }
}

TEST_F(UpdateTool, IsAskedThreeTimesForAnImage) {
  exec_automatic_download_and_verify(kBrandOrvane);
  const std::string download = "/usr/sbin/orvanehota -d";
  const std::string verify = "/usr/sbin/orvanehota -v";
  EXPECT_THAT(tools_.calls(), ElementsAre(download, verify, download, verify, download, verify));
  EXPECT_THAT(waits::taken(), ElementsAre(1U, 1U, 1U));
}

TEST_F(UpdateTool, IsNotAskedAgainOnceThereIsAnImage) {
  tools_.provide("/usr/sbin/tesmirhota", "case $1 in -d) echo image >/tmp/firmware.bin ;; esac");
  exec_automatic_download_and_verify(kBrandTesmir);
  EXPECT_THAT(tools_.calls(), ElementsAre("/usr/sbin/tesmirhota -d", "/usr/sbin/tesmirhota -v"));
  EXPECT_THAT(waits::taken(), ElementsAre(1U));
}

TEST_F(UpdateTool, StartsWithoutTheLastImageAndItsVerification) {
  ASSERT_TRUE(platform::write_file(kFirmwarePath, "old"));
  ASSERT_TRUE(platform::write_file(kVerifyResult, "Verify Success"));
  tools_.provide("/usr/sbin/orvanehota", "ls /tmp/firmware.bin /tmp/Download_Verify_Result >>/tmp/leftovers 2>&1");
  exec_automatic_download_and_verify(kBrandOrvane);
  EXPECT_EQ(tools_.calls().size(), 6U);
  EXPECT_FALSE(platform::file_exists(kFirmwarePath));
  EXPECT_FALSE(platform::file_exists(kVerifyResult));
  EXPECT_EQ(platform::read_file("/tmp/leftovers").value_or("").find("\n/tmp"), std::string::npos);
  std::filesystem::remove("/tmp/leftovers");
}

TEST_F(UpdateTool, IsOfNoUseOnAnUnknownUnit) {
  exec_automatic_download_and_verify(kBrandOther);
  EXPECT_THAT(tools_.calls(), IsEmpty());
  EXPECT_THAT(log_.texts(), ElementsAre("device_id error:2\n", "device_id error:2\n", "device_id error:2\n"));
  ASSERT_TRUE(platform::write_file(kFirmwarePath, "image"));
  run_hota_update(kBrandOther);
  EXPECT_THAT(tools_.calls(), IsEmpty());
}

TEST_F(UpdateTool, InstallsOnlyAnImageThatIsThere) {
  run_hota_update(kBrandOrvane);
  EXPECT_THAT(tools_.calls(), IsEmpty());
  ASSERT_TRUE(platform::write_file(kFirmwarePath, "image"));
  run_hota_update(kBrandOrvane);
  run_hota_update(kBrandTesmir);
  EXPECT_THAT(tools_.calls(), ElementsAre("/usr/sbin/orvanehota -u", "/usr/sbin/tesmirhota -u"));
}

}  // namespace

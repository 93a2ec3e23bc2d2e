// Commands of the update tools and the files that they leave.
#include "system/update_tool.h"

#include <cstdlib>
#include <optional>

#include "domain/brands.h"
#include "platform/background.h"
#include "platform/file.h"
#include "platform/log.h"
#include "system/device.h"
#include "system_helpers.h"

namespace {

constexpr const char* kVersionStatusPath = "/tmp/HotaVersionStatus";
constexpr const char* kVerifyResultPath = "/tmp/Download_Verify_Result";

}  // namespace

std::optional<int> count_running_tools() {
  std::string count;
  if (run_cmd_first_line("ps | grep 'hota -' | grep -v 'grep' | wc -l", count) != 0) return std::nullopt;
  return std::atoi(count.c_str());
}

int check_update_status(int& status) {
  constexpr std::size_t kMostDigits = 3;
  const std::optional<std::string> text = platform::read_file(kVersionStatusPath, kMostDigits);
  if (!text) {
    log_error("fopen failed.\n");
    return 1;
  }
  status = std::atoi(std::string(without_line_end(*text)).c_str());
  return 0;
}

void forget_verdict() { platform::remove_file(kVerifyResultPath); }

// The tool runs as the user that we are; what anybody else has put there is no verdict of its.
std::optional<std::string> read_verdict() { return platform::read_own_file(kVerifyResultPath); }

int check_download_fw_res(int& status) {
  const std::optional<std::string> text = read_verdict();
  if (!text) {
    log_error("fopen failed\n");
    return 1;
  }
  status = text->starts_with("Verify Success") ? 0 : -1;
  log_debug("status: %d\n", status);
  return 0;
}

void exec_automatic_download_and_verify(int brand_index) {
  constexpr int kAttempts = 3;
  const brands::Brand& brand = brands::of_index(brand_index);
  platform::remove_file(kFirmwarePath);
  forget_verdict();
  for (int attempt = 0; attempt < kAttempts && !platform::file_exists(kFirmwarePath); ++attempt) {
    if (brands::is_known(brand)) {
      os_system(brand.update_tool.download);
      os_system(brand.update_tool.verify);
    } else {
      log_error("device_id error:%d\n", brand_index);
    }
    platform::sleep_seconds(1);
  }
}

void run_hota_update(int brand_index) {
  const brands::Brand& brand = brands::of_index(brand_index);
  if (brands::is_known(brand) && platform::file_exists(kFirmwarePath)) os_system(brand.update_tool.install);
}

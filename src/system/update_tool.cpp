// Commands of the update tools and the files that they leave.
#include "system/update_tool.h"

#include <array>
#include <cstdlib>
#include <optional>

#include "platform/background.h"
#include "platform/file.h"
#include "platform/log.h"
#include "system/device.h"
#include "system_helpers.h"

namespace {

constexpr const char* kVersionStatusPath = "/tmp/HotaVersionStatus";
constexpr const char* kVerifyResultPath = "/tmp/Download_Verify_Result";

// By brand index.
constexpr std::array<UpdateTool, 2> kUpdateTools{{
    {"/usr/sbin/orvanehota -c", "/usr/sbin/orvanehota -d", "/usr/sbin/orvanehota -v", "/usr/sbin/orvanehota -u"},
    {"/usr/sbin/tesmirhota -c", "/usr/sbin/tesmirhota -d", "/usr/sbin/tesmirhota -v", "/usr/sbin/tesmirhota -u"},
}};

}  // namespace

const UpdateTool* update_tool(int brand_index) {
  const auto index = static_cast<std::size_t>(brand_index);
  return index < kUpdateTools.size() ? &kUpdateTools[index] : nullptr;
}

int count_running_tools(std::string& count) {
  return run_cmd_first_line("ps | grep 'hota -' | grep -v 'grep' | wc -l", count);
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

int check_download_fw_res(int& status) {
  const std::optional<std::string> text = platform::read_file(kVerifyResultPath);
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
  platform::remove_file(kFirmwarePath);
  platform::remove_file(kVerifyResultPath);  // an earlier image's verification says nothing of this one
  for (int attempt = 0; attempt < kAttempts && !platform::file_exists(kFirmwarePath); ++attempt) {
    if (const UpdateTool* tool = update_tool(brand_index)) {
      os_system(tool->download);
      os_system(tool->verify);
    } else {
      log_error("device_id error:%d\n", brand_index);
    }
    platform::sleep_seconds(1);
  }
}

void run_hota_update(int brand_index) {
  const UpdateTool* tool = update_tool(brand_index);
  if (tool != nullptr && platform::file_exists(kFirmwarePath)) os_system(tool->install);
}

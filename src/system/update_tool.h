// Runs of the brand's firmware update tool (domain/brands.h), which downloads, verifies and installs images and reports
// through files.
#pragma once

#include <optional>
#include <string>

inline constexpr const char* kFirmwarePath = "/tmp/firmware.bin";

// Number of tool runs under way; nullopt when it cannot be told.
std::optional<int> count_running_tools();

// 0 and the last check's status (1: a newer version is available), or 1 when there is none.
int check_update_status(int& status);
// An earlier image's verification says nothing of the next one.
void forget_verdict();
// What the last verification wrote; nullopt when there is nothing, or nothing that the tool can have written.
std::optional<std::string> read_verdict();
// 0 and the last verification's outcome (0 good, -1 bad), or 1 when there is none.
int check_download_fw_res(int& status);

// Deletes the image, then tries three times to download and verify one.
void exec_automatic_download_and_verify(int brand_index);

// Installs the image, when there is one.
void run_hota_update(int brand_index);

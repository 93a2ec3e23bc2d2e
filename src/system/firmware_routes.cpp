// POST /api/v1/system/firmware (an uploaded image) and POST /api/v1/fwupdatechkandrun (one from the update server).
#include <optional>
#include <string>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "handlers.h"
#include "platform/background.h"
#include "platform/file.h"
#include "platform/log.h"
#include "system/device.h"
#include "system/update_tool.h"
#include "system/upload.h"
#include "system_helpers.h"
#include "unit/brand.h"

namespace {

using answers::Result;

constexpr const char* kUploadHandler = "handle_system_firmware";

// False when not all of the upload arrived, or it cannot be stored.
bool store_image(const RawBody& body) {
  const Upload upload = store_upload(body, kFirmwarePath);
  if (upload == Upload::kCannotOpen) log_error_as(kUploadHandler, "Failed to open: %s\n", kFirmwarePath);
  if (upload == Upload::kCannotWrite) log_error_as(kUploadHandler, "Failed to write to: %s\n", kFirmwarePath);
  return upload == Upload::kStored;
}

bool verify_upload(const brands::Brand& brand) {
  forget_verdict();
  os_system("/usr/sbin/tesmirupg.sh");
  os_system(brand.update_tool.verify);
  if (!brands::is_known(brand)) {
    log_error_as(kUploadHandler, "unknown device id\n");
    return false;
  }
  const std::string verdict = read_verdict().value_or("");
  if (without_line_end(verdict.substr(0, verdict.find('\n'))) == "Verify Success") return true;
  log_error_as(kUploadHandler, "verification failed\n");
  return false;
}

// Nobody else is updating.
Result check_running_tools() {
  const std::optional<int> running = count_running_tools();
  if (!running) return Result::kUnusable;
  return *running == 0 ? Result::kOk : Result::kFailed;
}

// An upload that is refused leaves nothing behind.
Result accept_upload(const RawBody& body) {
  if (const Result result = check_running_tools(); result != Result::kOk) return result;
  Result result = Result::kOk;
  if (!store_image(body)) {
    result = Result::kUnusable;
  } else if (!verify_upload(unit::brand())) {
    result = Result::kNotVerified;
  }
  if (result != Result::kOk) platform::remove_file(kFirmwarePath);
  return result;
}

// kOk when there is something to download.
Result check_for_update(const json::Document& document, int brand_index) {
  const std::optional<int> check_and_update = document->number("checkAndUpdate");
  if (!check_and_update) return Result::kUnusable;
  if (const Result result = check_running_tools(); result != Result::kOk) return result;
  const brands::Brand& brand = brands::of_index(brand_index);
  if (!brands::is_known(brand)) {
    log_error_as("handle_automatic_upgrade", "unknown device id\n");
    return Result::kUnusable;
  }
  if (*check_and_update != 0 && *check_and_update != 1) return Result::kUnusable;
  if (*check_and_update == 0) os_system(brand.update_tool.check);
  int status = 0;
  return check_update_status(status) == 0 && status == 1 ? Result::kOk : Result::kUnusable;
}

// False when no thread could be made: an image that nothing will install does not stay.
platform::ReadyWork prepare_installation() {
  platform::ReadyWork installation =
      platform::ready_thread([install = unit::brand().update_tool.install] { os_system(install); });
  if (!installation) platform::remove_file(kFirmwarePath);
  return installation;
}

// kOk when what was downloaded is good.
Result verify_download() {
  int status = -1;
  if (check_download_fw_res(status) != 0) return Result::kUnusable;
  return status == 0 ? Result::kOk : Result::kNotVerified;
}

}  // namespace

int handle_system_firmware(FCGX_Request* request, const RawBody& body) {
  log_debug(" system upgrade start ...\n");
  Result result = accept_upload(body);
  platform::ReadyWork installation = result == Result::kOk ? prepare_installation() : platform::ReadyWork();
  if (result == Result::kOk && !installation) result = Result::kUnusable;
  answer_plain(request, result == Result::kOk ? answers::kInstalling : answers::refusal(result));
  installation.begin();
  return result == Result::kOk ? 0 : 1;
}

int handle_automatic_upgrade(FCGX_Request* request, const char* body) {
  const int brand_index = get_brand_index();
  if (const Result result = check_for_update(json::Document(body), brand_index); result != Result::kOk) {
    return answer(request, answers::refused(result));
  }
  exec_automatic_download_and_verify(brand_index);
  Result result = verify_download();
  platform::ReadyWork update;
  if (result == Result::kOk) update = platform::ready_thread([brand_index] { run_hota_update(brand_index); });
  if (result == Result::kOk && !update) result = Result::kUnusable;
  if (result != Result::kOk) {
    platform::remove_file(kFirmwarePath);
    return answer(request, answers::refused(result));
  }
  answer(request, json::success_text().add("waitTime", 300));
  update.begin();
  return 0;
}

// POST /api/v1/system/firmware (an uploaded image) and POST /api/v1/fwupdatechkandrun (one from the update server).
#include <cstdlib>
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

constexpr std::string_view kResultNotVerified = R"({"result": 3})";
// The key is spelled so, and kept as it is.
constexpr std::string_view kResultInstalling = R"({"result": 0, "version": 1, "waitTime": 300, "Massage": ""})";

// False when not all of the upload arrived, or it cannot be stored.
bool store_image(const RawBody& body) {
  const Upload upload = store_upload(body, kFirmwarePath);
  if (upload == Upload::kCannotOpen) log_error("Failed to open: %s\n", kFirmwarePath);
  if (upload == Upload::kCannotWrite) log_error("Failed to write to: %s\n", kFirmwarePath);
  return upload == Upload::kStored;
}

bool verify_upload(const brands::Brand& brand) {
  forget_verdict();
  os_system("/usr/sbin/tesmirupg.sh");
  os_system(brand.update_tool.verify);
  if (!brands::is_known(brand)) {
    log_error("unknown device id\n");
    return false;
  }
  const std::string verdict = read_verdict().value_or("");
  if (without_line_end(verdict.substr(0, verdict.find('\n'))) == "Verify Success") return true;
  log_error("verification failed\n");
  return false;
}

// 0 accepted, or the `result` to answer. An upload that is refused leaves nothing behind.
int accept_upload(const RawBody& body) {
  std::string running;
  if (count_running_tools(running) != 0) return 1;
  if (std::atoi(running.c_str()) != 0) return 2;
  int result = 0;
  if (!store_image(body)) {
    result = 1;
  } else if (!verify_upload(unit::brand())) {
    result = 3;
  }
  if (result != 0) platform::remove_file(kFirmwarePath);
  return result;
}

std::string_view answer_of(int result) {
  switch (result) {
    case 0:
      return kResultInstalling;
    case 1:
      return kResultUnusable;
    case 2:
      return kResultFailed;
    default:
      return kResultNotVerified;
  }
}

// 0 when there is something to download, or the `result` to answer.
int check_for_update(const json::Document& document, int brand_index) {
  const std::optional<int> check_and_update = document->number("checkAndUpdate");
  std::string running;
  if (!check_and_update || count_running_tools(running) != 0) return 1;
  if (std::atoi(running.c_str()) != 0) return 2;
  const brands::Brand& brand = brands::of_index(brand_index);
  if (!brands::is_known(brand)) {
    log_error("unknown device id\n");
    return 1;
  }
  if (*check_and_update != 0 && *check_and_update != 1) return 1;
  if (*check_and_update == 0) os_system(brand.update_tool.check);
  int status = 0;
  return check_update_status(status) == 0 && status == 1 ? 0 : 1;
}

// False when no thread could be made: an image that nothing will install does not stay.
platform::ReadyWork prepare_installation() {
  platform::ReadyWork installation =
      platform::ready_thread([install = unit::brand().update_tool.install] { os_system(install); });
  if (!installation) platform::remove_file(kFirmwarePath);
  return installation;
}

// 0 when what was downloaded is good, or the `result` to answer.
int verify_download() {
  int status = -1;
  if (check_download_fw_res(status) != 0) return 1;
  return status == 0 ? 0 : 3;
}

}  // namespace

int handle_system_firmware(FCGX_Request* request, const RawBody& body) {
  log_debug(" system upgrade start ...\n");
  int result = accept_upload(body);
  platform::ReadyWork installation = result == 0 ? prepare_installation() : platform::ReadyWork();
  if (result == 0 && !installation) result = 1;
  answer_plain(request, answer_of(result));
  installation.begin();
  return result == 0 ? 0 : 1;
}

int handle_automatic_upgrade(FCGX_Request* request, const char* body) {
  const int brand_index = get_brand_index();
  if (const int result = check_for_update(json::Document(body), brand_index); result != 0) {
    return answer(request, answer_of(result));
  }
  exec_automatic_download_and_verify(brand_index);
  int result = verify_download();
  platform::ReadyWork update;
  if (result == 0) update = platform::ready_thread([brand_index] { run_hota_update(brand_index); });
  if (result == 0 && !update) result = 1;
  if (result != 0) {
    platform::remove_file(kFirmwarePath);
    return answer(request, answer_of(result));
  }
  answer(request, json::result_text(0).add("version", 1).add("waitTime", 300));
  update.begin();
  return 0;
}

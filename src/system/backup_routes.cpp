// POST /api/v1/system/config/backup and /restore: the configuration as a file. Bodies are neither en- nor decrypted.
#include <array>
#include <cstdio>
#include <string>
#include <unistd.h>

#include "answer/answer.h"
#include "handlers.h"
#include "platform/background.h"
#include "platform/file.h"
#include "platform/log.h"
#include "request_body.h"
#include "system/backup_file.h"
#include "system_helpers.h"

namespace {

constexpr const char* kBackupPath = "/tmp/config_file.tar.gz";
constexpr std::array<const char*, 3> kDownloadNames{"MX-9P300KLD-config.bin", "VR-EH700QTS-config.bin",
                                                    "response_field.bin"};  // by brand index
constexpr std::string_view kResultOkWait300 = R"({"result": 0, "version": 1, "waitTime": 300})";

void write_text(FCGX_Request* request, std::string_view text) {
  FCGX_PutStr(text.data(), static_cast<int>(text.size()), request->out);
}

// False when the platform's tool failed: then there is no file of a trailer alone.
bool make_backup() {
  unlink(kBackupPath);
  if (os_system(std::string("/sbin/sysupgrade --create-backup ") + kBackupPath) != 1) return false;
  if (platform::read_file(kBackupPath, 1).value_or("").empty()) return false;
  return append_md5_to_file(kBackupPath) == 0 && append_device_id_to_file(kBackupPath) == 0;
}

void send_backup(FCGX_Request* request, std::FILE* file) {
  write_text(request, "Status: 200 OK\r\n");
  write_text(request, "Content-Type: application/octet-stream\r\n");
  write_text(request, std::string("Content-Disposition: attachment; filename=\"") +
                          kDownloadNames[static_cast<std::size_t>(get_brand_index())] + "\"\r\n\r\n");
  std::array<char, 1024> piece{};
  for (std::size_t got = std::fread(piece.data(), 1, piece.size(), file); got > 0;
       got = std::fread(piece.data(), 1, piece.size(), file)) {
    write_text(request, std::string_view(piece.data(), got));
  }
}

bool store_upload(FCGX_Request* request, const char* body) {
  if (body == nullptr || !is_body_complete(request)) {
    log_error("write to file failed\n");
    return false;
  }
  if (platform::write_file(kUploadPath, std::string_view(body, received_body_length(request)), 0600)) return true;
  log_error(platform::file_exists(kUploadPath) ? "write to file failed\n" : "open file failed\n");
  return false;
}

bool is_intact_backup() {
  return checkBackFileId() == 1 && split_backup_file(kUploadPath, kArchivePath) && checkBackFileMd5() == 1;
}

bool start_restore() {
  const bool started = platform::start_detached([] {
    os_system(std::string("/sbin/sysupgrade --restore-backup ") + kArchivePath);
    os_system("/sbin/reboot");
  });
  if (!started) log_error("create pthread fail\n");
  return started;
}

}  // namespace

int handle_config_backup(FCGX_Request* request, const char* /*body*/) {
  const bool made = make_backup();
  const platform::FilePtr file = made ? platform::open_file(kBackupPath, "r") : nullptr;
  if (file) {
    send_backup(request, file.get());
  } else {
    answer_plain(request, kResultUnusable);
  }
  unlink(kBackupPath);
  return file ? 0 : 1;
}

int handle_config_restore(FCGX_Request* request, const char* body) {
  if (store_upload(request, body) && is_intact_backup() && start_restore()) {
    return answer_plain(request, kResultOkWait300);
  }
  unlink(kUploadPath);
  unlink(kArchivePath);
  answer_plain(request, kResultUnusable);
  return 1;
}

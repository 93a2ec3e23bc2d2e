// POST /api/v1/system/config/backup and /restore: the configuration as a file. Bodies are neither en- nor decrypted.
#include <array>
#include <atomic>
#include <cstdio>
#include <memory>
#include <string>

#include "answer/answer.h"
#include "handlers.h"
#include "platform/background.h"
#include "platform/file.h"
#include "platform/log.h"
#include "system/backup_file.h"
#include "system/upload.h"
#include "system_helpers.h"
#include "unit/brand.h"

namespace {

constexpr const char* kBackupPath = "/tmp/config_file.tar.gz";

// The archive of the restore that runs belongs to it: no other request may touch it.
std::atomic<bool> is_restoring{false};

// False when the platform's tool failed: then there is no file of a trailer alone. The archive holds every password of
// the router; it is nobody else's from its first byte to its last.
bool make_backup() {
  if (!platform::create_private_file(kBackupPath).valid()) return false;
  if (os_system(std::string("/sbin/sysupgrade --create-backup ") + kBackupPath) != 1) return false;
  if (!platform::set_file_mode(kBackupPath, 0600)) return false;  // where the tool replaced the file
  if (platform::read_file(kBackupPath, 1).value_or("").empty()) return false;
  return append_md5_to_file(kBackupPath) == 0 && append_device_id_to_file(kBackupPath) == 0;
}

constexpr const char* kRestoreHandler = "handle_config_restore";

bool store_backup(const RawBody& body) {
  const Upload upload = store_upload(body, kUploadPath);
  if (upload == Upload::kCannotOpen) log_error_as(kRestoreHandler, "open file failed\n");
  if (upload == Upload::kCannotWrite) log_error_as(kRestoreHandler, "write to file failed\n");
  return upload == Upload::kStored;
}

// Cuts the archive out of the upload and compares it with what the trailer says.
bool is_intact_backup() {
  if (checkBackFileId() != 1) return false;
  split_backup_file(kUploadPath, kArchivePath);  // without an archive the checksum is none
  return checkBackFileMd5() == 1;
}

// Holds other restores off as long as it lives.
struct Restoring {
  Restoring() { is_restoring = true; }
  ~Restoring() { is_restoring = false; }
};

// False when no thread could be made.
platform::ReadyWork prepare_restore() {
  const auto restoring = std::make_shared<Restoring>();
  platform::ReadyWork restore = platform::ready_thread([restoring] {
    os_system(std::string("/sbin/sysupgrade --restore-backup ") + kArchivePath);
    platform::remove_file(kArchivePath);
    os_system("/sbin/reboot");
  });
  if (!restore) log_error_as(kRestoreHandler, "create pthread fail\n");
  return restore;
}

}  // namespace

int handle_config_backup(FCGX_Request* request, const RawBody& /*body*/) {
  const bool made = make_backup();
  const platform::FilePtr file = made ? platform::open_file(kBackupPath, "r") : nullptr;
  if (file) {
    answer_file(request, unit::brand().backup_file, file.get());
  } else {
    answer_plain(request, answers::kUnusable);
  }
  platform::remove_file(kBackupPath);
  return file ? 0 : 1;
}

int handle_config_restore(FCGX_Request* request, const RawBody& body) {
  if (is_restoring) {
    log_error("a restore is under way\n");
    answer_plain(request, answers::kUnusable);
    return 1;
  }
  platform::ReadyWork restore;
  if (store_backup(body) && is_intact_backup()) restore = prepare_restore();
  if (!restore) {
    platform::remove_file(kUploadPath);
    platform::remove_file(kArchivePath);
    answer_plain(request, answers::kUnusable);
    return 1;
  }
  answer_plain(request, answers::wait(300));
  restore.begin();
  return 0;
}

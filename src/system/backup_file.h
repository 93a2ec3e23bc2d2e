// The backup file: an archive, the 32 characters of its MD5, and the brand's device id of 4 characters.
#pragma once

#include <cstddef>
#include <string>

inline constexpr std::size_t kTrailerMd5 = 32;
inline constexpr std::size_t kTrailerId = 4;
inline constexpr std::size_t kTrailer = kTrailerMd5 + kTrailerId;

inline constexpr const char* kUploadPath = "/tmp/backup.tmp";
inline constexpr const char* kArchivePath = "/tmp/backup.tar.gz";

// All take paths of our own. 0 on success, -1 on failure.

// The 32 lower-case hexadecimal characters that `md5sum` prints.
int get_file_md5(const char* path, std::string& md5);
int append_md5_to_file(const char* path);
// Appends nothing for an unknown brand.
int append_device_id_to_file(const char* path);
int read_trailer_md5(const char* path, std::string& md5);
int read_trailer_id(const char* path, std::string& id);

// Copies all but the trailer, piece by piece, into an archive made anew, mode 0600. False, without an archive, when
// there is nothing to copy or it fails.
bool split_backup_file(const char* upload, const char* archive);

// 1 when the upload is of this brand, 0 otherwise (both logged; an unknown brand has no backups and no message).
int checkBackFileId();
// 1, with the upload deleted, when the archive is the one that the trailer speaks of; 0, with the archive deleted,
// otherwise. Logged.
int checkBackFileMd5();

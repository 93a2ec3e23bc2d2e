// Storing of request bodies.
#include "system/upload.h"

#include <utility>

#include "platform/file.h"

Upload store_upload(const RawBody& body, const char* path) {
  platform::UniqueFd file = platform::create_private_file(path);
  if (!file.valid()) return Upload::kCannotOpen;
  if (body.is_complete && platform::write_whole(file.get(), body.bytes) && platform::close_file(std::move(file))) {
    return Upload::kStored;
  }
  platform::remove_file(path);
  return Upload::kCannotWrite;
}

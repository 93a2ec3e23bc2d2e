// Storing of request bodies.
#include "system/upload.h"

#include <string_view>
#include <unistd.h>

#include "platform/file.h"
#include "request_body.h"

Upload store_upload(const FCGX_Request* request, const char* body, const char* path) {
  platform::UniqueFd file = platform::create_private_file(path);
  if (!file.valid()) return Upload::kCannotOpen;
  const bool arrived = body != nullptr && is_body_complete(request);
  if (arrived && platform::write_whole(file.get(), std::string_view(body, received_body_length(request))) &&
      close(file.release()) == 0) {
    return Upload::kStored;
  }
  unlink(path);
  return Upload::kCannotWrite;
}

// Uploads: request bodies that become files.
#pragma once

#include "request_body.h"

enum class Upload {
  kStored,
  kCannotOpen,   // nothing of that name could be made
  kCannotWrite,  // not all of it arrived, or there is no room for it
};

// Puts the body as it arrived into a file made anew, mode 0600. What is not kStored leaves no file behind.
Upload store_upload(const RawBody& body, const char* path);

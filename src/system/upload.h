// Uploads: request bodies that become files.
#pragma once

#include <fcgiapp.h>

enum class Upload {
  kStored,
  kCannotOpen,   // nothing of that name could be made
  kCannotWrite,  // not all of it arrived, or there is no room for it
};

// Puts the body as it arrived into a file made anew, mode 0600. What is not kStored leaves no file behind.
Upload store_upload(const FCGX_Request* request, const char* body, const char* path);

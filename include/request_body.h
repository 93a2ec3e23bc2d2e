// The body of an upload, as it arrived.
#pragma once

#include <string_view>

// What the client claims with CONTENT_LENGTH is never taken for what there is.
struct RawBody {
  std::string_view bytes = {};  // at most as many as were claimed; on loan from the router
  bool is_complete = false;     // all that was claimed arrived, and it is not nothing
};

// The object that a request's body is, or its refusal.
#pragma once

#include <fcgiapp.h>

#include "answer/json_reading.h"
#include "platform/log.h"

// What the log is told of a body that cannot be used: literals; nothing where there is none.
struct BodyMessages {
  const char* no_content = nullptr;  // there is no body, or an empty one
  const char* no_json = nullptr;
  const char* no_object = nullptr;  // JSON, but of another kind
  int priority = LOG_ERR;
};

// The body's object; none, with its message logged at `place`, when there is none. `body` may be nullptr.
json::Document parse_object(const char* body, const BodyMessages& messages,
                            platform::LogPlace place = platform::LogPlace::here());

// The same; a body that is none is answered with kUnusable, too: nothing is left to do then.
json::Document read_object(FCGX_Request* request, const char* body, const BodyMessages& messages,
                           platform::LogPlace place = platform::LogPlace::here());
// The same for routes that refuse in plain text.
json::Document read_object_plain(FCGX_Request* request, const char* body, const BodyMessages& messages,
                                 platform::LogPlace place = platform::LogPlace::here());

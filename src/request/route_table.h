// The route tables: which URI of which method is answered by which handler.
#pragma once

#include <span>
#include <string_view>
#include <variant>

#include <fcgiapp.h>

#include "request_body.h"

using GetHandler = int (*)(FCGX_Request* request);
using TextHandler = int (*)(FCGX_Request* request, const char* body);
using UploadHandler = int (*)(FCGX_Request* request, const RawBody& body);
// What a POST handler takes says whether its body is decrypted (a text) or handed over as it came (an upload).
using PostHandler = std::variant<TextHandler, UploadHandler>;

// One row: the whole URI (compared byte for byte, query string included) and its handler.
template <class Handler>
struct RouteEntry {
  std::string_view uri;
  Handler handler;
};
using GetRoute = RouteEntry<GetHandler>;
using PostRoute = RouteEntry<PostHandler>;

// Searched from the first row on; within one table every URI is unique.
extern const std::span<const PostRoute> post_routes;
extern const std::span<const GetRoute> get_routes;

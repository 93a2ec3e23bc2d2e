// Reading and routing of one request.
#include "request/dispatch.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "answer/answer.h"
#include "answer/encrypted_body.h"
#include "platform/process.h"
#include "platform/uci_session.h"
#include "request/body.h"
#include "request/connection.h"
#include "request/route_table.h"

namespace {

// The handler of the first row of `routes` with this URI; nullptr when there is none.
template <class Routes>
auto find_handler(const Routes& routes, std::string_view uri) -> const decltype(routes.front().handler)* {
  const auto row = std::ranges::find_if(routes, [uri](const auto& route) { return route.uri == uri; });
  return row == routes.end() ? nullptr : &row->handler;
}

// What follows is true when a handler was called.

bool dispatch_get(FCGX_Request* request, std::string_view uri) {
  const GetHandler* handler = find_handler(get_routes, uri);
  if (handler == nullptr || has_left(request->ipcFd)) return false;
  (*handler)(request);
  return true;
}

bool call_upload(UploadHandler handler, FCGX_Request* request, const std::optional<Body>& body) {
  handler(request, body ? body->raw() : RawBody{});
  return true;
}

// nullptr: no such route, which is told only of a body that can be decrypted.
bool call_with_text(const TextHandler* handler, FCGX_Request* request, const char* body) {
  if (handler == nullptr) return false;
  (*handler)(request, body);
  return true;
}

bool dispatch_post(FCGX_Request* request, std::string_view uri) {
  const char* length = FCGX_GetParam("CONTENT_LENGTH", request->envp);
  if (length == nullptr) {
    answer_router_error(request, "No content received");
    return false;
  }
  std::optional<Body> body;
  try {
    body = read_body(request, length);
  } catch (const std::bad_alloc&) {
    answer_router_error(request, "Memory allocation error");
    return false;
  }
  const PostHandler* handler = find_handler(post_routes, uri);
  if (const auto* upload = std::get_if<UploadHandler>(handler)) return call_upload(*upload, request, body);
  const auto* text = std::get_if<TextHandler>(handler);
  if (!body) return call_with_text(text, request, nullptr);
  const std::optional<std::string> plaintext = decrypt_content_api(body->c_str(), std::strlen(body->c_str()));
  if (!plaintext) {
    answer_router_error(request, "decrypt error");
    return false;
  }
  body.reset();
  return call_with_text(text, request, plaintext->c_str());
}

bool dispatch(FCGX_Request* request) {
  const char* method = FCGX_GetParam("REQUEST_METHOD", request->envp);
  const char* uri = FCGX_GetParam("REQUEST_URI", request->envp);
  if (method == nullptr || uri == nullptr) return false;
  if (std::string_view(method) == "POST") return dispatch_post(request, uri);
  if (std::string_view(method) == "GET") return dispatch_get(request, uri);
  answer_router_error(request, "Not Found");
  return false;
}

}  // namespace

int dispatch_request(FCGX_Request* request) {
  if (request == nullptr) return 1;
  const platform::UciSession session;
  platform::forget_late_commands();
  return dispatch(request) ? 0 : 1;
}

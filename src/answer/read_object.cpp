// The object that a request's body is, or its refusal.
#include "answer/read_object.h"

#include "answer/answer.h"

json::Document parse_object(const char* body, const BodyMessages& messages, platform::LogPlace place) {
  const bool has_content = body != nullptr && *body != '\0';
  json::Document document(body);
  if (document) return document;
  const char* message = messages.no_content;
  if (has_content) message = document.is_json() ? messages.no_object : messages.no_json;
  if (message != nullptr) platform::write_log(messages.priority, place.function, place.line, "%s", message);
  return document;
}

json::Document read_object(FCGX_Request* request, const char* body, const BodyMessages& messages,
                           platform::LogPlace place) {
  json::Document document = parse_object(body, messages, place);
  if (!document) answer(request, answers::kUnusable);
  return document;
}

json::Document read_object_plain(FCGX_Request* request, const char* body, const BodyMessages& messages,
                                 platform::LogPlace place) {
  json::Document document = parse_object(body, messages, place);
  if (!document) answer_plain(request, answers::kUnusable);
  return document;
}

// Answers: the header triple and one JSON text, encrypted or plain. Data is never a format.
#pragma once

#include <cstdio>
#include <functional>
#include <string_view>

#include <fcgiapp.h>

#include "answer/answers.h"
#include "answer/json_text.h"

// A request begins: nothing of its answer is written yet.
void expect_answer();
// Something of it has been written since.
bool has_answer_begun();

// "Content-Type: application/json", "Status: 200 OK" and the empty line.
void write_json_headers(FCGX_Request* request);

// Headers and the encrypted text. When the text cannot be encrypted the client gets a plain {"result": 1}.
// All of them return 0, so that a handler can end with `return answer(...)`.
int answer(FCGX_Request* request, std::string_view text);
int answer(FCGX_Request* request, json::ObjectText document);
// The outcome's text, then its command is started.
int answer(FCGX_Request* request, const answers::Outcome& outcome);
// Headers and the text as it is.
int answer_plain(FCGX_Request* request, std::string_view text);
int answer_plain(FCGX_Request* request, json::ObjectText document);

// For work that may come only once the client has its answer, because it takes long or ends the program: answer(), then
// the request is ended (a web server holds what was only flushed), then `work` runs. What it throws is logged. The
// request must not be used afterwards; that the loop ends it again does nothing. Returns 0.
int answer_then(FCGX_Request* request, std::string_view text, const std::function<void()>& work);

// A download under this name: what the file holds from its position on.
int answer_file(FCGX_Request* request, std::string_view name, std::FILE* file);

// The router's own errors: text/plain, no status line, no newline behind the message.
void answer_router_error(FCGX_Request* request, std::string_view message);

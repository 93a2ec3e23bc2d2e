// Writing of answers; texts go out as bytes, never as a format.
#include "answer/answer.h"

#include <array>
#include <string>
#include <utility>

#include "answer/encrypted_body.h"
#include "platform/run_guarded.h"
#include "platform/uci_session.h"
#include "system_helpers.h"

namespace {

bool has_begun = false;  // requests are answered one after another, all by one thread

void write_bytes(FCGX_Request* request, std::string_view text) {
  has_begun = true;
  FCGX_PutStr(text.data(), static_cast<int>(text.size()), request->out);
}

}  // namespace

void expect_answer() { has_begun = false; }

bool has_answer_begun() { return has_begun; }

void write_json_headers(FCGX_Request* request) {
  platform::settle_uci();  // whoever reads the answer may look at the packages
  write_bytes(request, "Content-Type: application/json\r\n");
  write_bytes(request, "Status: 200 OK\r\n");
  write_bytes(request, "\r\n");
}

int answer(FCGX_Request* request, std::string_view text) {
  const std::optional<std::string> ciphertext = encrypt_text(text);
  write_json_headers(request);
  write_bytes(request, ciphertext ? std::string_view(*ciphertext) : answers::kUnusable);
  return 0;
}

int answer(FCGX_Request* request, json::ObjectText document) { return answer(request, std::move(document).text()); }

int answer(FCGX_Request* request, const answers::Outcome& outcome) {
  answer(request, outcome.text);
  if (outcome.afterwards != nullptr) os_system(outcome.afterwards);
  return 0;
}

int answer_then(FCGX_Request* request, std::string_view text, const std::function<void()>& work) {
  answer(request, text);
  FCGX_Finish_r(request);
  platform::run_guarded(work);
  return 0;
}

int answer_plain(FCGX_Request* request, std::string_view text) {
  write_json_headers(request);
  write_bytes(request, text);
  return 0;
}

int answer_plain(FCGX_Request* request, json::ObjectText document) {
  return answer_plain(request, std::move(document).text());
}

int answer_file(FCGX_Request* request, std::string_view name, std::FILE* file) {
  write_bytes(request, "Status: 200 OK\r\n");
  write_bytes(request, "Content-Type: application/octet-stream\r\n");
  write_bytes(request, "Content-Disposition: attachment; filename=\"" + std::string(name) + "\"\r\n\r\n");
  std::array<char, 1024> piece{};
  for (std::size_t got = std::fread(piece.data(), 1, piece.size(), file); got > 0;
       got = std::fread(piece.data(), 1, piece.size(), file)) {
    write_bytes(request, std::string_view(piece.data(), got));
  }
  return 0;
}

void answer_router_error(FCGX_Request* request, std::string_view message) {
  write_bytes(request, "Content-Type: text/plain\r\n\r\n");
  write_bytes(request, message);
}

// A request as a web server sends it, over a FastCGI connection of its own; what was answered; and a jose that encrypts
// to the text itself.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include <fcgiapp.h>

#include "fake_tools.h"

class AskedRequest {
 public:
  using Parameters = std::vector<std::pair<std::string, std::string>>;

  // The connection's buffer holds the request, and later its answer: some 100 KB each.
  explicit AskedRequest(const Parameters& parameters = {}, std::string_view body = "") {
    static const int kLibrary = FCGX_Init();
    static const int kSocket = listening_socket();
    if (kLibrary != 0 || kSocket < 0) throw std::runtime_error("no FastCGI socket");
    client_ = connected_socket();
    send_all(request_records(parameters, body));
    shutdown(client_, SHUT_WR);
    FCGX_InitRequest(&request_, kSocket, 0);
    if (FCGX_Accept_r(&request_) != 0) throw std::runtime_error("the request was not accepted");
  }
  AskedRequest(const AskedRequest&) = delete;
  AskedRequest& operator=(const AskedRequest&) = delete;
  ~AskedRequest() {
    FCGX_Finish_r(&request_);
    if (client_ >= 0) close(client_);
  }

  operator FCGX_Request*() { return &request_; }  // NOLINT(google-explicit-constructor): handed to what is tested

  // The client goes away.
  void leave() { close(std::exchange(client_, -1)); }

  // Everything that was written, headers and all. Ends the request.
  std::string raw_answer() {
    FCGX_Finish_r(&request_);
    std::string bytes;
    std::array<char, 4096> piece{};
    for (ssize_t got = read(client_, piece.data(), piece.size()); got > 0;
         got = read(client_, piece.data(), piece.size()))
      bytes.append(piece.data(), static_cast<std::size_t>(got));
    return output_of(bytes);
  }
  // What stands behind the headers.
  std::string answer() {
    const std::string raw = raw_answer();
    const std::size_t head = raw.find("\r\n\r\n");
    return head == std::string::npos ? "no headers: " + raw : raw.substr(head + 4);
  }

 private:
  enum RecordType : std::uint8_t { kBegin = 1, kParams = 4, kStdin = 5, kStdout = 6 };
  static constexpr std::size_t kHeader = 8;

  static sockaddr_un address() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, "/tmp/asked_request");
    return address;
  }
  static int listening_socket() {
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un where = address();
    unlink(where.sun_path);
    const bool listens =
        bind(descriptor, reinterpret_cast<const sockaddr*>(&where), sizeof where) == 0 && listen(descriptor, 1) == 0;
    return listens ? descriptor : -1;
  }
  static int connected_socket() {
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un where = address();
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&where), sizeof where) != 0)
      throw std::runtime_error("no connection");
    return descriptor;
  }

  void send_all(const std::string& bytes) const {
    const ssize_t sent = send(client_, bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (sent != static_cast<ssize_t>(bytes.size())) throw std::runtime_error("a request too large for its socket");
  }

  static std::string record(RecordType type, std::string_view content) {
    const auto low = [](std::size_t number) { return static_cast<char>(number & 0xff); };
    std::string header{1, static_cast<char>(type), 0, 1, low(content.size() >> 8), low(content.size()), 0, 0};
    return header.append(content);
  }
  static std::string length_text(std::size_t length) {
    const auto part = [length](int shift) { return static_cast<char>((length >> shift) & 0xff); };
    if (length < 128) return {part(0)};
    return {static_cast<char>(part(24) | '\x80'), part(16), part(8), part(0)};
  }
  static std::string request_records(const Parameters& parameters, std::string_view body) {
    constexpr std::size_t kMostContent = 65535;
    std::string texts;
    for (const auto& [name, value] : parameters)
      texts += length_text(name.size()) + length_text(value.size()) + name + value;
    std::string all = record(kBegin, {"\0\1\0\0\0\0\0\0", 8}) + record(kParams, texts);
    if (!texts.empty()) all += record(kParams, "");
    for (; !body.empty(); body.remove_prefix(std::min(body.size(), kMostContent)))
      all += record(kStdin, body.substr(0, kMostContent));
    return all + record(kStdin, "");
  }
  static std::string output_of(std::string_view records) {
    const auto byte = [&records](std::size_t at) { return static_cast<unsigned char>(records[at]); };
    std::string output;
    while (records.size() >= kHeader) {
      const std::size_t length = byte(4) * std::size_t{256} + byte(5);
      if (byte(1) == kStdout) output += records.substr(kHeader, length);
      records.remove_prefix(std::min(records.size(), kHeader + length + byte(6)));
    }
    return output;
  }

  FCGX_Request request_{};
  int client_ = -1;
};

// A GET handler's answer. jose has to be provided.
template <class Handler>
std::string answer_of(Handler handler) {
  AskedRequest request;
  handler(request);
  return request.answer();
}
// A POST handler's answer to a body, which may be nullptr.
template <class Handler>
std::string answer_of(Handler handler, const char* body) {
  AskedRequest request;
  handler(request, body);
  return request.answer();
}

// JWE through the `jose` tool: the text on standard input, no shell and no argument limit between.
#include "answer/encrypted_body.h"

#include "platform/log.h"
#include "platform/process.h"

namespace {

// A file that is sent as a body ends with a line end, which no tool has to know.
std::string_view without_surrounding_space(std::string_view text) {
  constexpr std::string_view kSpace = " \t\n\v\f\r";
  const std::size_t begin = text.find_first_not_of(kSpace);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kSpace) - begin + 1);
}

// What `jose` printed for `input`, with the trace of a failure that printed something all the same.
platform::ProcessResult run_jose(const std::vector<std::string>& argv, std::string_view input) {
  constexpr std::size_t kTextMax = std::size_t{64} << 20;
  constexpr std::size_t kHeaderMax = 4096;
  const std::size_t in_base64 = input.size() / 3 * 4;  // what a ciphertext has, and its header beside
  platform::ProcessResult result =
      platform::run(argv, {.input = input, .max_output = kTextMax, .expected_output = in_base64 + kHeaderMax});
  if (result.output_cut) {
    log_error("jose printed more than %zu bytes\n", kTextMax);
    result.output.clear();
  }
  if (result.started && !result.output.empty() && !result.succeeded()) {
    log_error("jose printed %zu bytes and ended with status %d\n", result.output.size(), result.exit_status());
  }
  return result;
}

}  // namespace

std::optional<std::string> encrypt_content_api(const char* plaintext) {
  if (plaintext == nullptr) {
    log_error("Jwe encrypt_str is null!\n");
    return std::nullopt;
  }
  return encrypt_text(plaintext);
}

std::optional<std::string> encrypt_text(std::string_view plaintext) {
  constexpr const char* kEncrypt = "encrypt_content_api";  // what the log knows it by
  platform::ProcessResult result =
      run_jose({"jose", "jwe", "enc", "-i", "/etc/lighttpd/jwe-protected.json", "-I-", "-p", "-c"}, plaintext);
  if (!result.started) {
    log_error_as(kEncrypt, "popen failed\n");
    return std::nullopt;
  }
  if (result.output.empty()) {
    log_error_as(kEncrypt, "Failed to allocate memory for jwe_str.\n");
    return std::nullopt;
  }
  return std::move(result.output);
}

std::optional<std::string> decrypt_content_api(const char* ciphertext, std::size_t length) {
  if (ciphertext == nullptr) {
    log_error("Jwe decrypt_str is null!\n");
    return std::nullopt;
  }
  platform::ProcessResult result =
      run_jose({"jose", "jwe", "dec", "-i-", "-p"}, without_surrounding_space(std::string_view(ciphertext, length)));
  if (!result.started) {
    log_error("popen failed\n");
    return std::nullopt;
  }
  if (const std::size_t end = result.output.find('\0'); end != std::string::npos) result.output.resize(end);
  if (result.output.empty()) {
    log_error("Failed to allocate memory for plaintext_str.\n");
    return std::nullopt;
  }
  if (!result.succeeded()) return std::nullopt;  // the tool prints a plaintext before it checks its tag
  return std::move(result.output);
}

std::string escape_single_quotes(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char character : text) {
    if (character == '\'') {
      escaped += R"('\'')";
    } else {
      escaped += character;
    }
  }
  return escaped;
}

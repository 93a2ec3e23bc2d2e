// Encrypted bodies: JWE compact texts, made and read by the platform's `jose` tool.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Both start `jose` directly with the text on its standard input and take what it prints, whatever its exit status.
// nullopt (and one log line) when there is no text, the tool cannot be started, or it prints nothing. Blocking; safe
// from any thread.

// The ciphertext as printed, a trailing newline included. `plaintext` may be empty; nullptr fails.
std::optional<std::string> encrypt_content_api(const char* plaintext);
// The plaintext, up to its first NUL byte. `ciphertext` may be any `length` bytes.
std::optional<std::string> decrypt_content_api(const char* ciphertext, std::size_t length);

// Every ' becomes '\'' so that the text can stand inside a single-quoted shell word.
std::string escape_single_quotes(std::string_view text);

// Encrypted bodies: JWE compact texts, made and read by the platform's `jose` tool.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Both start `jose` directly with the text on its standard input. nullopt (and one log line) when there is no text, the
// tool cannot be started, or it prints nothing. Blocking; safe from any thread.

// The ciphertext as printed, a trailing newline included, whatever the tool's exit status. `plaintext` may be empty;
// nullptr fails.
std::optional<std::string> encrypt_content_api(const char* plaintext);
// The same for a text that need not end with a NUL.
std::optional<std::string> encrypt_text(std::string_view plaintext);
// The plaintext, up to its first NUL byte. `ciphertext` may be any `length` bytes; the tool gets it without the white
// space around it. nullopt, too, when the tool ends with a status other than 0: it prints a plaintext before it has
// checked the tag, so what a forged text yields is printed, but never valid.
std::optional<std::string> decrypt_content_api(const char* ciphertext, std::size_t length);

// Every ' becomes '\'' so that the text can stand inside a single-quoted shell word.
std::string escape_single_quotes(std::string_view text);

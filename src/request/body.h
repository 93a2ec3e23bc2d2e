// The request body: CONTENT_LENGTH is a claim, what arrived is what counts.
#pragma once

#include <optional>
#include <string>

#include <fcgiapp.h>

// The body of a POST. nullopt when `content_length` (as atoi reads it) is 0, negative or no number: then nothing is
// read. Otherwise what arrived of at most that many bytes, however little; memory grows with what arrives, not with
// the claim. Throws std::bad_alloc when even that does not fit.
std::optional<std::string> read_body(FCGX_Request* request, const char* content_length);

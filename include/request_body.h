// How much of an upload arrived.
#pragma once

#include <cstddef>

#include <fcgiapp.h>

// Bytes of the current request's body that arrived, at most CONTENT_LENGTH; 0 without a body. An upload route looks
// here: its text may hold NUL bytes, and CONTENT_LENGTH is only what the client claims.
std::size_t received_body_length(const FCGX_Request* request);

// All that was claimed arrived, and it is not nothing.
bool is_body_complete(const FCGX_Request* request);

// The router: reads one request, decrypts its body and calls the handler of its row.
#pragma once

#include <fcgiapp.h>

// 0 when a handler was called, 1 otherwise (no request, parameters missing, unknown method, unusable body, no row, a
// GET whose client has left).
int dispatch_request(FCGX_Request* request);

// Writing of the WAN's configuration.
#pragma once

#include <cstddef>

#include "waninfoMethod/wan_request.h"

// Writes everything that the request asks for. A field out of its range is logged and left out. 0 on success; 1 when
// there is no record or the old mode's options cannot be deleted: what was written before stays.
unsigned int set_wanInfoConfig(const wanInfo* info);

// Deletes what only the stored mode `mode` (of `length` bytes) needs. 0, or 1 ("Invalid parameter.") without a text.
unsigned int delLastModePara(const char* mode, std::size_t length);

// Runs "ip addr flush dev eth1".
void flush_wan();

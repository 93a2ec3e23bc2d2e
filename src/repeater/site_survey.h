// The scan of the air for the repeater's settings page.
#pragma once

#include <cstddef>

#include "answer/json_text.h"

// Scans a band (0, 1, 2: 2.4, 5, 6 GHz) on mld1, mld2 or mld3 and appends its access points to `list`.
// Blocks: up to 15 tries, 2 seconds apart, until a scan tells of any or takes too long. Always 0.
int scan_single_interface(std::size_t band, json::ListText& list);

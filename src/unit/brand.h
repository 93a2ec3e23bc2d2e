// Which brand this unit is, by the device id that the platform writes to /tmp/deviceid at boot.
#pragma once

#include <cstddef>
#include <string>

#include "domain/brands.h"

// Copies the last piece (7 bytes at most, newline included) of /tmp/deviceid. 0, or 1 (size below 8, no file). Traced
// on standard error.
int getDeviceId(char* out, std::size_t size);
// The index of what the file begins with; kBrandTesmir, and a message on standard error, when it cannot be opened.
int get_brand_index();

namespace unit {

// All read the file afresh; the brands are the last row for an id that is unknown.

// The row of get_brand_index.
const brands::Brand& brand();
// The row of getDeviceId, which looks at the file's last piece; nullptr when it cannot be opened.
const brands::Brand* brand_of_device_id();

// The file's first line without its line feed, 15 bytes at most; empty, and a message on standard error, when there is
// none.
std::string device_id_line();
// The row whose id is all of that line, a carriage return aside.
const brands::Brand& brand_of_device_id_line();

}  // namespace unit

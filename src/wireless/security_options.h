// Reading and writing of the options behind a wifiSecurity code.
#pragma once

#include "domain/security_codes.h"

// wifiSecurity code of the access point `ifname`, from its UCI options. 0, or 1 with `out` untouched.
int get_encryption_mode_value(const char* ifname, int& out);

namespace security {

// Writes a row to package.section. The results of the single writes do not matter: sections may be absent in a mesh.
void write(const Writing& writing, const char* package, const char* section, const char* key);

}  // namespace security

// Writing of the options behind a wifiSecurity code; include/wireless.h has their reader.
#pragma once

#include "domain/security_codes.h"

namespace security {

// Writes a row to package.section. The results of the single writes do not matter: sections may be absent in a mesh.
void write(const Writing& writing, const char* package, const char* section, const char* key);

}  // namespace security

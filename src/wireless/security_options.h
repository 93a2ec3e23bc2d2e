// Reading and writing of the options behind a wifiSecurity code.
#pragma once

#include <string>

#include "domain/security_codes.h"
#include "uci_section.h"

// wifiSecurity code of the access point `ifname`, from its UCI options. 0, or 1 with `out` untouched.
int get_encryption_mode_value(const char* ifname, int& out);

namespace security {

// Writes a row. A mesh may lack the section, so writes that fail are told in the log alone.
void write(const Writing& writing, const uci::Section& section, const std::string& key);

}  // namespace security

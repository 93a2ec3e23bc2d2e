// Packages as text: what is exported and what a commit writes.
#pragma once

#include "elements.h"
#include "locked_file.h"

namespace uci {

// Writes the text of a package file, piece by piece, with the "package" line when `header` is set. Reading it gives the
// same elements.
void write_package_text(const uci_package& package, bool header, const PutText& put);

}  // namespace uci

// Packages as text: what is exported and what a commit writes.
#pragma once

#include <string>

#include "elements.h"

namespace uci {

// The text of a package file, with the "package" line when `header` is set. Reading it gives the same elements.
std::string format_package(const uci_package& package, bool header);

}  // namespace uci

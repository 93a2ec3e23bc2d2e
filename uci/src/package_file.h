// Packages and their files: loading, staging, committing.
#pragma once

#include "elements.h"

namespace uci {

// Reads the package and what is staged for it. Throws Failure; nothing is added to the context then.
uci_package* load_package(uci_context& context, const char* name);

// Reads a loaded package again of which a commit could not read all, for want of memory. Throws Failure.
void complete_package(uci_context& context, uci_package& package);

// Appends the unsaved changes to the delta file. Throws Failure{UCI_ERR_IO}; the changes are kept then.
void save_package(uci_context& context, uci_package& package);

}  // namespace uci

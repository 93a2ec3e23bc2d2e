// The delta files of a package: one in the savedir, which changes are staged in, and those of the other folders.
#pragma once

#include "elements.h"
#include "locked_file.h"

namespace uci {

// Applies the delta files of all folders in their order; the number of records that did. The one of the savedir is
// given when it is locked already. Throws Failure.
int apply_delta_files(uci_context& context, uci_package& package, const LockedFile& package_file,
                      const LockedFile* savedir_file);

// The delta file of the savedir, made when there is something to put into it. Not open when there is none. Throws
// Failure{UCI_ERR_IO}.
LockedFile open_delta_file(const uci_context& context, const uci_package& package);

// Moves the unsaved changes into the delta file. Throws Failure{UCI_ERR_IO}; they are kept then.
void append_pending(LockedFile& delta_file, uci_package& package);

// Keeps the records that are not of what `ptr` names. What else stands in the file could never apply, and goes. Throws
// Failure{UCI_ERR_IO}.
void filter_delta_file(uci_context& context, const uci_package& package, const uci_ptr& ptr);

}  // namespace uci

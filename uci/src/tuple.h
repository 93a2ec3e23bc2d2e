// Tuples: "package.section.option=value".
#pragma once

#include "elements.h"

namespace uci {

// Splits `text` in place and checks the names. Throws Failure{UCI_ERR_PARSE} with `ptr` zeroed.
void split_tuple(uci_ptr& ptr, char* text);

// Finds what `ptr` names, loading the package when it is not loaded yet. `text` nullptr: uses what `ptr` holds.
void look_up(uci_context& context, uci_ptr& ptr, char* text, bool extended);

// Looks up unless that was done already, and completes the names of the elements that were given.
void resolve(uci_context& context, uci_ptr& ptr);

}  // namespace uci

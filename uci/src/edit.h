// Changing of loaded packages. These change the elements; the public functions above them also record the change.
#pragma once

#include "elements.h"

namespace uci {

// Appends a named section that does not exist yet, as a recorded change. Throws Failure{UCI_ERR_INVAL}.
uci_section* add_named_section(uci_package& package, const char* name, const char* type);
// The option, made or replaced in its place.
uci_option* set_string(uci_section& section, const char* name, std::string_view value);
// Gives the section another type, as setting one does.
void set_type(uci_section& section, std::string_view type);
// Removes every item equal to `value`.
void remove_items(uci_option& option, std::string_view value);
// The item of that index, or nullptr.
uci_element* item_at(uci_option& option, int index);
// False when `other`, which has the name that the section shall get, is of another type: a file that held both could
// not be read again. nullptr: nobody has it.
bool may_share_name(const uci_section& section, const uci_section* other);
// Puts the section before the one that then has this index. False when it stood there already.
bool move_section(uci_section& section, int index);

}  // namespace uci

// The lists that the element tree is made of.
#pragma once

#include <uci.h>

namespace uci {

void list_init(uci_list& list);
void list_add_tail(uci_list& list, uci_list& node);
void list_insert(uci_list& before, uci_list& node);
void list_remove(uci_list& node);

// First element of that name, or nullptr.
uci_element* find(uci_list& list, const char* name);
uci_section* find_section(uci_package& package, const char* name);
uci_option* find_option(uci_section& section, const char* name);

}  // namespace uci

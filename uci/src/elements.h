// The element tree: packages, sections, options, items and change records, each owned by its parent.
#pragma once

#include <string>
#include <string_view>

#include <uci.h>

namespace uci {

// Thrown inside the library, turned into a result code at its border.
struct Failure {
  int code;
};

// Lists.
void list_init(uci_list& list);
void list_add_tail(uci_list& list, uci_list& node);
void list_insert(uci_list& before, uci_list& node);
void list_remove(uci_list& node);

// First element of that name, or nullptr.
uci_element* find(uci_list& list, std::string_view name);

// New elements are appended to their parent, which owns them from then on.
uci_package* new_package(uci_context& context, std::string_view name);
uci_section* new_section(uci_package& package, std::string_view type, const char* name);  // nullptr: a generated name
uci_option* new_string(uci_section& section, std::string_view name, std::string_view value);
uci_option* new_list(uci_section& section, std::string_view name);
void append_item(uci_option& option, std::string_view value);
uci_delta* new_delta(uci_list& list, uci_command command, std::string_view section, const char* option,
                     const char* value);
uci_element* new_path(uci_list& list, std::string_view directory);

// Unlink and free, with all that they own.
void free_package(uci_package* package);
void free_section(uci_section* section);
void free_option(uci_option* option);
void free_element(uci_element* element);  // items and paths
void free_deltas(uci_list& list);

// Turns an option into a string, or into a list whose first item is its string, where it stands.
void make_string(uci_option& option, std::string_view value);
void make_list(uci_option& option);

// Replaces an owned C text.
void replace_text(char*& text, std::string_view value);

uci_section* find_section(uci_package& package, std::string_view name);
uci_option* find_option(uci_section& section, std::string_view name);

// "cfg", the number of the section and the hash of its type.
std::string generated_name(int number, std::string_view type);

}  // namespace uci

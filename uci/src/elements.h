// The element tree: packages, sections, options, items and change records, each owned by its parent.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <uci.h>

#include "lists.h"
#include "locked_file.h"

namespace uci {

// Thrown inside the library, turned into a result code at its border.
struct Failure {
  int code;
};

// New elements are appended to their parent, which owns them from then on. Each is one piece of memory together with
// its texts: a function that throws for want of it has changed nothing.
uci_package* new_package(uci_context& context, std::string_view name);
uci_section* new_section(uci_package& package, std::string_view type, const char* name);  // nullptr: a generated name
uci_option* new_string(uci_section& section, std::string_view name, std::string_view value);
uci_element* new_path(uci_list& list, std::string_view directory);
// Appends an item to the option's list; makes the option, or a list of it whose first item was its value.
uci_option* add_item(uci_section& section, const char* name, std::string_view value);

// A change record that is in no list yet.
struct DestroyDelta {
  void operator()(uci_delta* delta) const noexcept;
};
using DeltaPtr = std::unique_ptr<uci_delta, DestroyDelta>;
DeltaPtr make_delta(uci_command command, std::string_view section, const char* option, const char* value);
void append(uci_list& list, DeltaPtr delta);

// Unlink and free, with all that they own.
void free_package(uci_package* package);
void free_section(uci_section* section);
void free_option(uci_option* option);
void free_element(uci_element* element);  // items and paths
void free_deltas(uci_list& list);
// Frees all sections, and the records that were applied to them.
void clear(uci_package& package);

// What the library knows of a package beside its public face.
struct PackageNotes {
  FileState read_from;   // the file, when the elements were read from it without skipping anything
  bool is_whole = true;  // false: the elements could not all be read, and must not be taken for the package
};
PackageNotes& notes_of(uci_package& package);

// Change an element where it stands.
void make_string(uci_option& option, std::string_view value);
void rename(uci_section& section, std::string_view name);
void rename(uci_option& option, std::string_view name);
void retype(uci_section& section, std::string_view type);

// The one text that all sections of that type in the package have; nullptr when there can be none.
const char* shared_type(uci_package& package, std::string_view type);

// Replaces an owned C text that belongs to no element's piece.
void replace_text(char*& text, std::string_view value);

// "cfg", the number of the section and the hash of its type.
std::string generated_name(int number, std::string_view type);

}  // namespace uci

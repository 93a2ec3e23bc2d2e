// Lists of elements, and the finding of elements in them.
#include "lists.h"

namespace uci {
namespace {

// Names are short and mostly differ early: a call for each would cost more than the comparing.
bool is_equal(const char* one, const char* other) {
  while (*one == *other && *one != '\0') {
    ++one;
    ++other;
  }
  return *one == *other;
}

}  // namespace

void list_init(uci_list& list) { list.next = list.prev = &list; }

void list_insert(uci_list& before, uci_list& node) {
  node.next = &before;
  node.prev = before.prev;
  before.prev->next = &node;
  before.prev = &node;
}

void list_add_tail(uci_list& list, uci_list& node) { list_insert(list, node); }

void list_remove(uci_list& node) {
  node.next->prev = node.prev;
  node.prev->next = node.next;
  list_init(node);
}

uci_element* find(uci_list& list, const char* name) {
  uci_element* element = nullptr;
  uci_foreach_element(&list, element) {
    if (is_equal(element->name, name)) return element;
  }
  return nullptr;
}

uci_section* find_section(uci_package& package, const char* name) {
  return uci_to_section(find(package.sections, name));
}

uci_option* find_option(uci_section& section, const char* name) { return uci_to_option(find(section.options, name)); }

}  // namespace uci

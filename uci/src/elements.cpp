// Making, finding and freeing of elements.
#include "elements.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace uci {
namespace {

char* copy_text(std::string_view text) {
  char* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy == nullptr) throw std::bad_alloc();
  if (!text.empty()) std::memcpy(copy, text.data(), text.size());
  copy[text.size()] = '\0';
  return copy;
}

template <class Object>
Object* new_object(uci_element Object::*element, uci_type type, std::string_view name) {
  Object* object = new Object{};
  uci_element& base = object->*element;
  base.type = type;
  base.name = copy_text(name);
  list_init(base.list);
  return object;
}

uci_element* new_element(uci_list& list, uci_type type, std::string_view name) {
  uci_element* element = new uci_element{};
  element->type = type;
  element->name = copy_text(name);
  list_add_tail(list, element->list);
  return element;
}

uci_option* new_option(uci_section& section, std::string_view name) {
  uci_option* option = new_object(&uci_option::e, UCI_TYPE_OPTION, name);
  option->section = &section;
  list_add_tail(section.options, option->e.list);
  return option;
}

// The destroy functions free an element that is in no list any more, or in one that goes with it.

void destroy_element(uci_element* element) {
  std::free(element->name);
  delete element;
}

template <class Object>
void destroy_all(uci_list& list, void (*destroy)(Object*)) {
  uci_list* node = list.next;
  list_init(list);
  while (node != &list) {
    uci_list* const next = node->next;
    destroy(reinterpret_cast<Object*>(list_to_element(node)));  // the element is the first member
    node = next;
  }
}

void destroy_value(uci_option& option) {
  if (option.type == UCI_TYPE_STRING) {
    std::free(option.v.string);
  } else {
    destroy_all(option.v.list, destroy_element);
  }
}

void destroy_option(uci_option* option) {
  destroy_value(*option);
  std::free(option->e.name);
  delete option;
}

void destroy_section(uci_section* section) {
  destroy_all(section->options, destroy_option);
  std::free(section->e.name);
  std::free(section->type);
  delete section;
}

void destroy_delta(uci_delta* delta) {
  std::free(delta->e.name);
  std::free(delta->section);
  std::free(delta->value);
  delete delta;
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

uci_element* find(uci_list& list, std::string_view name) {
  uci_element* element = nullptr;
  uci_foreach_element(&list, element) {
    if (name == element->name) return element;
  }
  return nullptr;
}

uci_package* new_package(uci_context& context, std::string_view name) {
  uci_package* package = new_object(&uci_package::e, UCI_TYPE_PACKAGE, name);
  list_init(package->sections);
  list_init(package->delta);
  list_init(package->saved_delta);
  package->ctx = &context;
  package->backend = context.backend;
  return package;
}

std::string generated_name(int number, std::string_view type) {
  std::uint32_t hash = 5381;
  for (const char character : type) hash = hash * 33 + static_cast<std::uint32_t>(static_cast<signed char>(character));
  char text[32];
  std::snprintf(text, sizeof(text), "cfg%02x%04x", static_cast<unsigned int>(number), hash & 0xffffU);
  return text;
}

uci_section* new_section(uci_package& package, std::string_view type, const char* name) {
  ++package.n_section;
  const std::string own_name = name != nullptr ? name : generated_name(package.n_section, type);
  uci_section* section = new_object(&uci_section::e, UCI_TYPE_SECTION, own_name);
  list_init(section->options);
  section->type = copy_text(type);
  section->anonymous = name == nullptr;
  section->package = &package;
  list_add_tail(package.sections, section->e.list);
  return section;
}

uci_option* new_string(uci_section& section, std::string_view name, std::string_view value) {
  uci_option* option = new_option(section, name);
  option->type = UCI_TYPE_STRING;
  option->v.string = copy_text(value);
  return option;
}

uci_option* new_list(uci_section& section, std::string_view name) {
  uci_option* option = new_option(section, name);
  option->type = UCI_TYPE_LIST;
  list_init(option->v.list);
  return option;
}

void append_item(uci_option& option, std::string_view value) { new_element(option.v.list, UCI_TYPE_ITEM, value); }

uci_element* new_path(uci_list& list, std::string_view directory) {
  return new_element(list, UCI_TYPE_PATH, directory);
}

uci_delta* new_delta(uci_list& list, uci_command command, std::string_view section, const char* option,
                     const char* value) {
  uci_delta* delta = new_object(&uci_delta::e, UCI_TYPE_DELTA, option != nullptr ? option : "");
  if (option == nullptr) {
    std::free(delta->e.name);
    delta->e.name = nullptr;
  }
  delta->cmd = command;
  delta->section = copy_text(section);
  delta->value = value != nullptr ? copy_text(value) : nullptr;
  list_add_tail(list, delta->e.list);
  return delta;
}

void free_element(uci_element* element) {
  list_remove(element->list);
  destroy_element(element);
}

void free_option(uci_option* option) {
  list_remove(option->e.list);
  destroy_option(option);
}

void free_section(uci_section* section) {
  list_remove(section->e.list);
  destroy_section(section);
}

void free_deltas(uci_list& list) { destroy_all(list, destroy_delta); }

void free_package(uci_package* package) {
  list_remove(package->e.list);
  destroy_all(package->sections, destroy_section);
  free_deltas(package->delta);
  free_deltas(package->saved_delta);
  std::free(package->path);
  std::free(package->e.name);
  delete package;
}

void make_string(uci_option& option, std::string_view value) {
  char* text = copy_text(value);
  destroy_value(option);
  option.type = UCI_TYPE_STRING;
  option.v.string = text;
}

void make_list(uci_option& option) {
  if (option.type == UCI_TYPE_LIST) return;
  char* first = option.v.string;
  option.type = UCI_TYPE_LIST;
  list_init(option.v.list);
  append_item(option, first);
  std::free(first);
}

void replace_text(char*& text, std::string_view value) {
  char* copy = copy_text(value);
  std::free(text);
  text = copy;
}

uci_section* find_section(uci_package& package, std::string_view name) {
  return uci_to_section(find(package.sections, name));
}

uci_option* find_option(uci_section& section, std::string_view name) {
  return uci_to_option(find(section.options, name));
}

}  // namespace uci

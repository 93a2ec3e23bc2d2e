// Making, changing and freeing of elements.
#include "elements.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <unordered_set>
#include <utility>

#include "piece.h"

namespace uci {
namespace {

void init(uci_element& element, uci_type type, char* name) {
  element.type = type;
  element.name = name;
  list_init(element.list);
}

template <class Object>
void destroy_element(Object* object, uci_element& element) {
  free_text(object, element.name);
  free_piece(object);
}

struct HashText {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>()(text); }
};

struct NotedPackage {
  uci_package package;
  PackageNotes notes;
  std::unordered_set<std::string, HashText, std::equal_to<>> types;  // of its sections, former ones too
};

// Every package is one.
NotedPackage* noted(uci_package* package) { return reinterpret_cast<NotedPackage*>(package); }

struct DestroyItem {
  void operator()(uci_element* element) const noexcept { destroy_element(element, *element); }
};
using ItemPtr = std::unique_ptr<uci_element, DestroyItem>;

ItemPtr make_item(uci_type type, std::string_view text) {
  auto* element = new_piece<uci_element>(text.size() + 1);
  init(*element, type, texts_of(element));
  put(element->name, text);
  return ItemPtr(element);
}

void append(uci_list& list, ItemPtr item) { list_add_tail(list, item.release()->list); }

uci_option* new_option(uci_section& section, std::string_view name, std::size_t value_size) {
  auto* option = new_piece<uci_option>(name.size() + 1 + value_size);
  init(option->e, UCI_TYPE_OPTION, texts_of(option) + value_size);  // the name behind the value
  option->section = &section;
  return option;
}

// The destroy functions free an element that is in no list any more, or in one that goes with it.

template <class Object, class Destroy>
void destroy_all(uci_list& list, Destroy destroy) {
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
    free_text(&option, option.v.string);
  } else {
    destroy_all<uci_element>(option.v.list, DestroyItem());
  }
}

void destroy_option(uci_option* option) {
  destroy_value(*option);
  destroy_element(option, option->e);
}

void destroy_section(uci_section* section) {
  destroy_all<uci_option>(section->options, destroy_option);
  destroy_element(section, section->e);
}

uci_option* new_list(uci_section& section, std::string_view name, ItemPtr item) {
  uci_option* option = new_option(section, name, 0);
  put(option->e.name, name);
  option->type = UCI_TYPE_LIST;
  list_init(option->v.list);
  append(option->v.list, std::move(item));
  list_add_tail(section.options, option->e.list);
  return option;
}

void make_list(uci_option& option) {
  ItemPtr first = make_item(UCI_TYPE_ITEM, option.v.string);
  destroy_value(option);
  option.type = UCI_TYPE_LIST;
  list_init(option.v.list);
  append(option.v.list, std::move(first));
}

// The package's copy of a type. Nobody writes it: the interface just has no const there.
char* share_type(uci_package& package, std::string_view type) {
  auto& types = noted(&package)->types;
  const auto known = types.find(type);
  return const_cast<char*>((known != types.end() ? known : types.emplace(type).first)->c_str());
}

}  // namespace

uci_package* new_package(uci_context& context, std::string_view name) {
  auto* const piece = new_piece<NotedPackage>(name.size() + 1);
  uci_package* const package = &piece->package;
  init(package->e, UCI_TYPE_PACKAGE, texts_of(piece));
  put(package->e.name, name);
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
  const std::string generated = name == nullptr ? generated_name(package.n_section + 1, type) : "";
  const std::string_view own_name = name == nullptr ? std::string_view(generated) : name;
  char* const shared_type = share_type(package, type);
  auto* section = new_piece<uci_section>(own_name.size() + 1);
  init(section->e, UCI_TYPE_SECTION, texts_of(section));
  put(section->e.name, own_name);
  section->type = shared_type;
  list_init(section->options);
  section->anonymous = name == nullptr;
  section->package = &package;
  list_add_tail(package.sections, section->e.list);
  ++package.n_section;
  return section;
}

uci_option* new_string(uci_section& section, std::string_view name, std::string_view value) {
  uci_option* option = new_option(section, name, value.size() + 1);
  option->type = UCI_TYPE_STRING;
  option->v.string = texts_of(option);
  put(put(option->v.string, value), name);
  list_add_tail(section.options, option->e.list);
  return option;
}

uci_element* new_path(uci_list& list, std::string_view directory) {
  append(list, make_item(UCI_TYPE_PATH, directory));
  return list_to_element(list.prev);
}

uci_option* add_item(uci_section& section, const char* name, std::string_view value) {
  ItemPtr item = make_item(UCI_TYPE_ITEM, value);
  uci_option* option = find_option(section, name);
  if (option == nullptr) return new_list(section, name, std::move(item));
  if (option->type == UCI_TYPE_STRING) make_list(*option);
  append(option->v.list, std::move(item));
  return option;
}

void DestroyDelta::operator()(uci_delta* delta) const noexcept { free_piece(delta); }

DeltaPtr make_delta(uci_command command, std::string_view section, const char* option, const char* value) {
  const std::string_view name = option != nullptr ? option : "";
  const std::string_view text = value != nullptr ? value : "";
  auto* delta = new_piece<uci_delta>(section.size() + name.size() + text.size() + 3);
  delta->section = texts_of(delta);
  char* const name_place = put(delta->section, section);
  char* const value_place = put(name_place, name);
  put(value_place, text);
  init(delta->e, UCI_TYPE_DELTA, option != nullptr ? name_place : nullptr);
  delta->cmd = command;
  delta->value = value != nullptr ? value_place : nullptr;
  return DeltaPtr(delta);
}

void append(uci_list& list, DeltaPtr delta) { list_add_tail(list, delta.release()->e.list); }

void free_element(uci_element* element) {
  list_remove(element->list);
  DestroyItem()(element);
}

void free_option(uci_option* option) {
  list_remove(option->e.list);
  destroy_option(option);
}

void free_section(uci_section* section) {
  list_remove(section->e.list);
  destroy_section(section);
}

void free_deltas(uci_list& list) { destroy_all<uci_delta>(list, DestroyDelta()); }

void clear(uci_package& package) {
  destroy_all<uci_section>(package.sections, destroy_section);
  free_deltas(package.saved_delta);
  package.n_section = 0;
}

PackageNotes& notes_of(uci_package& package) { return noted(&package)->notes; }

void free_package(uci_package* package) {
  list_remove(package->e.list);
  clear(*package);
  free_deltas(package->delta);
  std::free(package->path);
  NotedPackage* const piece = noted(package);
  std::destroy_at(&piece->types);
  destroy_element(piece, package->e);
}

void make_string(uci_option& option, std::string_view value) {
  char* text = copy_text(value);
  destroy_value(option);
  option.type = UCI_TYPE_STRING;
  option.v.string = text;
}

void rename(uci_section& section, std::string_view name) { replace_text_of(section, section.e.name, name); }
void rename(uci_option& option, std::string_view name) { replace_text_of(option, option.e.name, name); }
void retype(uci_section& section, std::string_view type) { section.type = share_type(*section.package, type); }

const char* shared_type(uci_package& package, std::string_view type) {
  const auto& types = noted(&package)->types;
  const auto known = types.find(type);
  return known != types.end() ? known->c_str() : nullptr;
}

void replace_text(char*& text, std::string_view value) {
  char* copy = copy_text(value);
  std::free(text);
  text = copy;
}

}  // namespace uci

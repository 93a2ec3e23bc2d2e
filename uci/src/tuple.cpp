// Splitting of tuples and looking up of what they name.
#include "tuple.h"

#include <cstdlib>
#include <cstring>

#include "context.h"
#include "package_file.h"
#include "package_parser.h"

namespace uci {
namespace {

// Cuts `text` at its first `separator`; what follows, or nullptr.
char* cut(char* text, char separator) {
  if (text == nullptr) return nullptr;
  char* found = std::strchr(text, separator);
  if (found == nullptr) return nullptr;
  *found = '\0';
  return found + 1;
}

bool is_printable_word(std::string_view text) { return is_type(text); }

uci_type target_of(const uci_ptr& ptr) {
  if (ptr.option != nullptr) return UCI_TYPE_OPTION;
  return ptr.section != nullptr ? UCI_TYPE_SECTION : UCI_TYPE_PACKAGE;
}

void add_flag(uci_ptr& ptr, decltype(uci_ptr::flags) flag) {
  ptr.flags = static_cast<decltype(uci_ptr::flags)>(ptr.flags | flag);
}

struct Position {
  std::string_view type;  // empty: any
  int index = 0;
};

// "@type[index]"; throws Failure{UCI_ERR_INVAL} for anything else.
Position parse_position(const char* text) {
  if (*text != '@') throw Failure{UCI_ERR_INVAL};
  const char* open = std::strchr(text, '[');
  if (open == nullptr) throw Failure{UCI_ERR_INVAL};
  char* end = nullptr;
  const long long index = std::strtoll(open + 1, &end, 10);  // as far on each processor
  if (*end != ']' || end[1] != '\0') throw Failure{UCI_ERR_INVAL};
  // Wraps as the width of the platform's index does.
  return {std::string_view(text + 1, static_cast<std::size_t>(open - text - 1)), static_cast<int>(index)};
}

// Counts from the end for a negative index, -1 being the last.
uci_section* find_at(uci_package& package, const Position& position) {
  const bool is_any = position.type.empty();
  const char* const type = shared_type(package, position.type);
  const bool from_end = position.index < 0;
  long left = from_end ? -1L - position.index : position.index;
  const auto step = [from_end](const uci_list& node) { return from_end ? node.prev : node.next; };
  for (uci_list* node = step(package.sections); node != &package.sections; node = step(*node)) {
    uci_section* section = uci_to_section(list_to_element(node));
    if ((is_any || section->type == type) && left-- == 0) return section;
  }
  return nullptr;
}

uci_package* find_or_load_package(uci_context& context, const char* name) {
  if (uci_element* loaded = find(context.root, name)) return uci_to_package(loaded);
  return load_package(context, name);
}

// The section that ptr names; nullptr when there is none.
uci_section* find_named_section(uci_context& context, uci_ptr& ptr) {
  if ((ptr.flags & uci_ptr::UCI_LOOKUP_EXTENDED) == 0) return find_section(*ptr.p, ptr.section);
  try {
    uci_section* section = find_at(*ptr.p, parse_position(ptr.section));
    if (section != nullptr) ptr.section = section->e.name;
    return section;
  } catch (const Failure&) {
    ptr = uci_ptr{};
    context.err = UCI_ERR_INVAL;
    throw;
  }
}

void find_elements(uci_context& context, uci_ptr& ptr) {
  if (ptr.p == nullptr) ptr.p = find_or_load_package(context, ptr.package);
  complete_package(context, *ptr.p);
  ptr.last = &ptr.p->e;
  add_flag(ptr, uci_ptr::UCI_LOOKUP_DONE);
  if (ptr.section == nullptr && ptr.s == nullptr) {
    add_flag(ptr, uci_ptr::UCI_LOOKUP_COMPLETE);
    return;
  }
  if (ptr.s == nullptr) ptr.s = find_named_section(context, ptr);
  if (ptr.s == nullptr) return;
  ptr.last = &ptr.s->e;
  if (ptr.option != nullptr) {
    if (ptr.o == nullptr) ptr.o = find_option(*ptr.s, ptr.option);
    if (ptr.o == nullptr) return;
    ptr.last = &ptr.o->e;
  }
  add_flag(ptr, uci_ptr::UCI_LOOKUP_COMPLETE);
}

// The names of elements that the caller filled in by hand.
void complete_names(uci_ptr& ptr) {
  if (ptr.o != nullptr && ptr.s == nullptr) ptr.s = ptr.o->section;
  if (ptr.s != nullptr && ptr.p == nullptr) ptr.p = ptr.s->package;
  if (ptr.p != nullptr && ptr.package == nullptr) ptr.package = ptr.p->e.name;
  if (ptr.s != nullptr && ptr.section == nullptr) ptr.section = ptr.s->e.name;
  if (ptr.o != nullptr && ptr.option == nullptr) ptr.option = ptr.o->e.name;
}

}  // namespace

void split_tuple(uci_ptr& ptr, char* text) {
  ptr = uci_ptr{};
  const char* value = cut(text, '=');
  char* section = cut(text, '.');
  char* option = cut(section, '.');
  const bool too_many = cut(option, '.') != nullptr;
  const bool valid = !too_many && is_printable_word(text) && (option == nullptr || is_name(option)) &&
                     (value == nullptr || uci_validate_text(value));
  if (!valid) throw Failure{UCI_ERR_PARSE};
  ptr.package = text;
  ptr.section = section;
  ptr.option = option;
  ptr.value = value;
  ptr.target = target_of(ptr);
  if (section != nullptr && !is_name(section)) add_flag(ptr, uci_ptr::UCI_LOOKUP_EXTENDED);
}

void look_up(uci_context& context, uci_ptr& ptr, char* text, bool extended) {
  if (text != nullptr) {
    split_tuple(ptr, text);
  } else {
    complete_names(ptr);
    if (ptr.package == nullptr && ptr.p == nullptr) throw Failure{UCI_ERR_INVAL};
    ptr.target = target_of(ptr);
  }
  if (!extended && (ptr.flags & uci_ptr::UCI_LOOKUP_EXTENDED) != 0) throw Failure{UCI_ERR_INVAL};
  find_elements(context, ptr);
}

void resolve(uci_context& context, uci_ptr& ptr) {
  if ((ptr.flags & uci_ptr::UCI_LOOKUP_DONE) != 0) return;
  look_up(context, ptr, nullptr, true);
}

}  // namespace uci

extern "C" {

int uci_parse_ptr(uci_context* ctx, uci_ptr* ptr, char* str) {
  return uci::guarded(ctx, [&](uci_context&) {
    if (ptr == nullptr || str == nullptr) throw uci::Failure{UCI_ERR_INVAL};
    uci::split_tuple(*ptr, str);
  });
}

int uci_lookup_ptr(uci_context* ctx, uci_ptr* ptr, char* str, bool extended) {
  return uci::guarded(ctx, [&](uci_context& context) {
    if (ptr == nullptr) throw uci::Failure{UCI_ERR_INVAL};
    uci::look_up(context, *ptr, str, extended);
  });
}

int uci_lookup_next(uci_context* ctx, uci_element** e, uci_list* list, const char* name) {
  return uci::guarded(ctx, [&](uci_context&) {
    if (e == nullptr || list == nullptr || name == nullptr) throw uci::Failure{UCI_ERR_INVAL};
    *e = uci::find(*list, name);
    if (*e == nullptr) throw uci::Failure{UCI_ERR_NOTFOUND};
  });
}

}  // extern "C"

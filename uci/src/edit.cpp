// The editing functions: change an element, record the change.
#include "edit.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

#include "context.h"
#include "package_file.h"
#include "package_parser.h"
#include "tuple.h"

namespace uci {
namespace {

void require(bool condition, int code) {
  if (!condition) throw Failure{code};
}

constexpr const char* kEndsAName = "'\"\\#;=.";

// Names stand unquoted in delta and package files. What would end the name, or the record, there could change others.
bool is_recordable(std::string_view name, const uci_package& package) {
  if (is_name(name) || !package.has_delta) return is_name(name);
  return !name.empty() && std::ranges::none_of(name, [](char character) {
    return static_cast<unsigned char>(character) < ' ' || std::strchr(kEndsAName, character) != nullptr;
  });
}

// A record begins with the package's name: it must not look like a kind of record, and end where it ends.
bool is_recordable(const uci_package& package) {
  if (!package.has_delta) return true;
  return std::strpbrk(package.e.name, kEndsAName) == nullptr && std::strchr("+-@^|~", package.e.name[0]) == nullptr;
}

// The record of a change: made before it, so that nothing can fail behind it, and kept after it. Throws
// Failure{UCI_ERR_INVAL} for names that cannot be recorded.
class Note {
 public:
  Note(uci_package& package, uci_command command, std::string_view section, const char* option, const char* value)
      : package_(package) {
    require(is_recordable(package) && is_recordable(section, package), UCI_ERR_INVAL);
    require(option == nullptr || is_recordable(option, package), UCI_ERR_INVAL);
    if (package.has_delta) delta_ = make_delta(command, section, option, value);
  }
  void keep() {
    if (delta_) append(package_.delta, std::move(delta_));
  }

 private:
  uci_package& package_;
  DeltaPtr delta_;
};

// Looks `ptr` up and requires a value and a section.
void resolve_with_value(uci_context& context, uci_ptr& ptr) {
  resolve(context, ptr);
  require(ptr.value != nullptr && ptr.section != nullptr, UCI_ERR_INVAL);
}

// Thrown for a list item that is named by no number.
struct NotANumber {};

bool is_list(const uci_option* option) { return option != nullptr && option->type == UCI_TYPE_LIST; }

// The index that a deletion's value is; nullopt without a value. What is no number was meant as something else than an
// index, so nothing is deleted for it.
std::optional<long long> index_of(const uci_ptr& ptr) {
  if (ptr.value == nullptr || *ptr.value == '\0') return std::nullopt;
  char* end = nullptr;
  const long long index = std::strtoll(ptr.value, &end, 10);
  if (end != ptr.value) return index;
  if (is_list(ptr.o)) throw NotANumber{};
  throw Failure{UCI_ERR_INVAL};
}

void delete_item(uci_ptr& ptr, long long index) {
  uci_element* item = item_at(*ptr.o, static_cast<int>(index));
  if (item == nullptr) return;
  Note note(*ptr.p, UCI_CMD_REMOVE, ptr.section, ptr.option, std::to_string(index).c_str());
  free_element(item);
  note.keep();
}

void delete_found(uci_ptr& ptr) {
  const std::optional<long long> index = index_of(ptr);
  if (index && is_list(ptr.o)) return delete_item(ptr, *index);
  Note(*ptr.p, UCI_CMD_REMOVE, ptr.s->e.name, ptr.o != nullptr ? ptr.o->e.name : nullptr, nullptr).keep();
  if (ptr.o != nullptr) {
    free_option(ptr.o);
    ptr.o = nullptr;
    ptr.last = &ptr.s->e;
    return;
  }
  free_section(ptr.s);
  ptr.s = nullptr;
  ptr.last = &ptr.p->e;
}

void set_empty(uci_ptr& ptr) {
  const bool found = ptr.option != nullptr ? ptr.o != nullptr : ptr.s != nullptr;
  if (found) {
    ptr.value = nullptr;
    delete_found(ptr);
    return;
  }
  require(ptr.option == nullptr || ptr.s != nullptr, UCI_ERR_INVAL);
}

void set_option(uci_ptr& ptr) {
  require(ptr.s != nullptr, UCI_ERR_INVAL);
  const bool same = ptr.o != nullptr && ptr.o->type == UCI_TYPE_STRING && std::strcmp(ptr.o->v.string, ptr.value) == 0;
  if (same) return;
  Note note(*ptr.p, UCI_CMD_CHANGE, ptr.section, ptr.option, ptr.value);
  ptr.o = set_string(*ptr.s, ptr.option, ptr.value);
  note.keep();
}

void set_section_type(uci_ptr& ptr) {
  require(is_type(ptr.value), UCI_ERR_INVAL);
  if (ptr.s != nullptr && std::strcmp(ptr.s->type, ptr.value) == 0) return;
  Note note(*ptr.p, UCI_CMD_CHANGE, ptr.section, nullptr, ptr.value);
  ptr.s = find_section(*ptr.p, ptr.section);
  if (ptr.s == nullptr) {
    ptr.s = new_section(*ptr.p, ptr.value, ptr.section);
  } else {
    set_type(*ptr.s, ptr.value);
  }
  note.keep();
}

}  // namespace

uci_section* add_named_section(uci_package& package, const char* name, const char* type) {
  require(is_type(type), UCI_ERR_INVAL);
  Note note(package, UCI_CMD_CHANGE, name, nullptr, type);
  uci_section* section = new_section(package, type, name);
  note.keep();
  return section;
}

uci_option* set_string(uci_section& section, const char* name, std::string_view value) {
  uci_option* option = find_option(section, name);
  if (option == nullptr) return new_string(section, name, value);
  make_string(*option, value);
  return option;
}

void set_type(uci_section& section, std::string_view type) {
  const bool same_length = std::strlen(section.type) == type.size();
  retype(section, type);
  if (!same_length) section.anonymous = false;
}

void remove_items(uci_option& option, std::string_view value) {
  uci_element* item = nullptr;
  uci_element* next = nullptr;
  uci_foreach_element_safe(&option.v.list, next, item) {
    if (value == item->name) free_element(item);
  }
}

uci_element* item_at(uci_option& option, int index) {
  uci_element* item = nullptr;
  uci_foreach_element(&option.v.list, item) {
    if (index-- == 0) return item;
  }
  return nullptr;
}

bool may_share_name(const uci_section& section, const uci_section* other) {
  return other == nullptr || other == &section || std::strcmp(other->type, section.type) == 0;
}

bool move_section(uci_section& section, int index) {
  uci_list& sections = section.package->sections;
  uci_list* const next_before = section.e.list.next;
  list_remove(section.e.list);
  uci_list* target = sections.next;
  while (target != &sections && index-- > 0) target = target->next;
  list_insert(*target, section.e.list);
  return section.e.list.next != next_before;
}

}  // namespace uci

using uci::guarded;

extern "C" {

int uci_set(uci_context* ctx, uci_ptr* ptr) {
  return guarded(ctx, [&](uci_context& context) {
    uci::require(ptr != nullptr, UCI_ERR_INVAL);
    uci::resolve_with_value(context, *ptr);
    if (*ptr->value == '\0') {
      uci::set_empty(*ptr);
    } else if (ptr->option != nullptr) {
      uci::set_option(*ptr);
    } else {
      uci::set_section_type(*ptr);
    }
  });
}

int uci_add_list(uci_context* ctx, uci_ptr* ptr) {
  return guarded(ctx, [&](uci_context& context) {
    uci::require(ptr != nullptr, UCI_ERR_INVAL);
    uci::resolve_with_value(context, *ptr);
    uci::require(ptr->s != nullptr && ptr->option != nullptr, UCI_ERR_INVAL);
    uci::Note note(*ptr->p, UCI_CMD_LIST_ADD, ptr->section, ptr->option, ptr->value);
    ptr->o = uci::add_item(*ptr->s, ptr->option, ptr->value);
    note.keep();
  });
}

int uci_del_list(uci_context* ctx, uci_ptr* ptr) {
  return guarded(ctx, [&](uci_context& context) {
    uci::require(ptr != nullptr, UCI_ERR_INVAL);
    uci::resolve_with_value(context, *ptr);
    uci::require(ptr->s != nullptr, UCI_ERR_INVAL);
    if (ptr->o == nullptr || ptr->o->type != UCI_TYPE_LIST) return;
    const std::string value = ptr->value;  // which may be one of the items
    uci::Note(*ptr->p, UCI_CMD_LIST_DEL, ptr->section, ptr->option, ptr->value).keep();
    uci::remove_items(*ptr->o, value);
  });
}

int uci_delete(uci_context* ctx, uci_ptr* ptr) {
  bool is_number = true;
  const int result = guarded(ctx, [&](uci_context& context) {
    uci::require(ptr != nullptr, UCI_ERR_INVAL);
    uci::resolve(context, *ptr);
    uci::require(ptr->section != nullptr, UCI_ERR_INVAL);
    uci::require((ptr->flags & uci_ptr::UCI_LOOKUP_COMPLETE) != 0 && ptr->s != nullptr, UCI_ERR_NOTFOUND);
    try {
      uci::delete_found(*ptr);
    } catch (const uci::NotANumber&) {
      is_number = false;
    }
  });
  return is_number ? result : 1;  // a bare 1 without ctx->err, which callers of the command know as its exit status
}

int uci_rename(uci_context* ctx, uci_ptr* ptr) {
  return guarded(ctx, [&](uci_context& context) {
    uci::require(ptr != nullptr, UCI_ERR_INVAL);
    uci::resolve(context, *ptr);
    uci::require((ptr->flags & uci_ptr::UCI_LOOKUP_COMPLETE) != 0, UCI_ERR_NOTFOUND);
    uci::require(ptr->value != nullptr && ptr->s != nullptr, UCI_ERR_INVAL);
    uci::require(ptr->p->has_delta || uci::is_name(ptr->value), UCI_ERR_INVAL);
    const uci_section* namesake = uci::find_section(*ptr->p, ptr->value);
    uci::require(ptr->o != nullptr || uci::may_share_name(*ptr->s, namesake), UCI_ERR_DUPLICATE);
    uci::Note note(*ptr->p, UCI_CMD_RENAME, ptr->s->e.name, ptr->o != nullptr ? ptr->o->e.name : nullptr, ptr->value);
    if (ptr->o != nullptr) {
      uci::rename(*ptr->o, ptr->value);
    } else {
      uci::rename(*ptr->s, ptr->value);
      ptr->s->anonymous = false;
    }
    note.keep();
  });
}

int uci_add_section(uci_context* ctx, uci_package* p, const char* type, uci_section** res) {
  return guarded(ctx, [&](uci_context& context) {
    uci::require(p != nullptr && type != nullptr && res != nullptr, UCI_ERR_INVAL);
    uci::complete_package(context, *p);
    uci::require(p->has_delta || uci::is_type(type), UCI_ERR_INVAL);
    const std::string name = uci::generated_name(p->n_section + 1, type);
    uci::Note note(*p, UCI_CMD_ADD, name, nullptr, type);
    *res = uci::new_section(*p, type, nullptr);
    note.keep();
  });
}

int uci_reorder_section(uci_context* ctx, uci_section* s, int pos) {
  return guarded(ctx, [&](uci_context&) {
    uci::require(s != nullptr, UCI_ERR_INVAL);
    uci::Note note(*s->package, UCI_CMD_REORDER, s->e.name, nullptr, std::to_string(pos).c_str());
    if (uci::move_section(*s, pos)) note.keep();
  });
}

}  // extern "C"

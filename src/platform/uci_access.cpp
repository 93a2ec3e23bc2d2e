// The UCI access layer on libuci's public interface.
#include "uci_access.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string_view>

#include <uci.h>

#include "platform/log.h"

namespace {

constexpr unsigned int kSuccess = 0;
constexpr unsigned int kFailure = 1;

// Every message carries the name and line of the wrapper that failed, so the macro stands in the wrappers.
struct FreeContext {
  void operator()(uci_context* context) const noexcept { uci_free_context(context); }
};
using UciContextPtr = std::unique_ptr<uci_context, FreeContext>;

const char* text_or_empty(const char* text) { return text == nullptr ? "" : text; }

// An address: its words joined by '.', an optional "=value" behind, cut at the platform's bound. libuci cuts the text
// up in place, so `shown` keeps it whole for the messages.
struct Address {
  Address(std::initializer_list<const char*> words, const char* value = nullptr) {
    for (const char* word : words) {
      if (!shown.empty()) shown += '.';
      shown += text_or_empty(word);
    }
    if (value != nullptr) (shown += '=') += value;
    if (shown.size() > kUciAddressMax) shown.resize(kUciAddressMax);
    text = shown;
  }
  std::string shown;
  std::string text;
};

UciContextPtr open_context(const char* confdir) {
  UciContextPtr context(uci_alloc_context());
  if (context && confdir != nullptr) uci_set_confdir(context.get(), confdir);
  return context;
}

bool look_up(uci_context* context, Address& address, uci_ptr& found) {
  return uci_lookup_ptr(context, &found, address.text.data(), true) == UCI_OK;
}

bool is_complete(const uci_ptr& found) { return (found.flags & uci_ptr::UCI_LOOKUP_COMPLETE) != 0; }

// The steps that every wrapper begins with; they return from it on failure.
#define OPEN_CONTEXT(confdir)                          \
  const UciContextPtr context = open_context(confdir); \
  if (!context) {                                      \
    log_error("alloc uci context failed");             \
    return kFailure;                                   \
  }
#define LOOK_UP(address)                                             \
  uci_ptr found{};                                                   \
  if (!look_up(context.get(), address, found)) {                     \
    log_error("uci_lookup_ptr %s failed.", (address).shown.c_str()); \
    return kFailure;                                                 \
  }
// A commit that failed is told in the log alone: the change itself was made.
#define COMMIT(package)                                         \
  if (uci_commit(context.get(), &(package), false) != UCI_OK) { \
    log_error("uci_commit failed.");                            \
  }

}  // namespace

unsigned int UciCheckSection(const char* confdir, const char* package, const char* section) {
  OPEN_CONTEXT(confdir)
  Address address({package, section});
  LOOK_UP(address)
  if (is_complete(found)) return kSuccess;
  context->err = UCI_ERR_NOTFOUND;
  log_error("find tuple failed.");
  return kFailure;
}

unsigned int UciCreatSection(const char* confdir, const char* package, const char* type, const char* name) {
  OPEN_CONTEXT(confdir)
  Address address({package, name}, text_or_empty(type));
  LOOK_UP(address)
  if (uci_set(context.get(), &found) != UCI_OK) {
    log_error("uci_set %s.%s=%s failed.", text_or_empty(package), text_or_empty(type), text_or_empty(name));
    return kFailure;
  }
  COMMIT(found.p)
  return kSuccess;
}

unsigned int UciCreateAnonymousSection(const char* confdir, const char* package, const char* type) {
  OPEN_CONTEXT(confdir)
  uci_package* loaded = nullptr;
  if (package == nullptr || uci_load(context.get(), package, &loaded) != UCI_OK) {
    log_error("uci_load %s failed.", text_or_empty(package));
    return kFailure;
  }
  uci_section* added = nullptr;
  if (type == nullptr || uci_add_section(context.get(), loaded, type, &added) != UCI_OK) {
    log_error("uci_add_section %s.%s failed.", package, text_or_empty(type));
    return kFailure;
  }
  COMMIT(loaded)
  return kSuccess;
}

unsigned int UciDelSection(const char* confdir, const char* package, const char* section) {
  OPEN_CONTEXT(confdir)
  Address address({package, section});
  LOOK_UP(address)
  if (uci_delete(context.get(), &found) != UCI_OK) return kFailure;
  COMMIT(found.p)
  return kSuccess;
}

unsigned int UciSetOption(const char* confdir, const char* package, const char* section, const char* option,
                          const char* value) {
  OPEN_CONTEXT(confdir)
  Address address({package, section, option}, text_or_empty(value));
  LOOK_UP(address)
  if (uci_set(context.get(), &found) != UCI_OK) {
    log_error("uci_set %s failed.", address.shown.c_str());
    return kFailure;
  }
  COMMIT(found.p)
  return kSuccess;
}

unsigned int UciGetOption(const char* confdir, const char* package, const char* section, const char* option, char* out,
                          std::size_t size) {
  OPEN_CONTEXT(confdir)
  Address address({package, section, option});
  LOOK_UP(address)
  if (!is_complete(found) || found.o == nullptr || found.o->type != UCI_TYPE_STRING) {
    context->err = UCI_ERR_NOTFOUND;
    log_error("find tuple %s.%s.%s failed.", text_or_empty(package), text_or_empty(section), text_or_empty(option));
    return kFailure;
  }
  if (out == nullptr || size == 0) return kFailure;
  const std::size_t length = std::min(std::strlen(found.o->v.string), size - 1);
  std::memcpy(out, found.o->v.string, length);
  out[length] = '\0';
  return kSuccess;
}

unsigned int UciDelOption(const char* confdir, const char* package, const char* section, const char* option) {
  OPEN_CONTEXT(confdir)
  Address address({package, section, option});
  LOOK_UP(address)
  if (uci_delete(context.get(), &found) != UCI_OK) return kFailure;
  COMMIT(found.p)
  return kSuccess;
}

unsigned int UciAddList(const char* confdir, const char* package, const char* section, const char* option,
                        const char* value) {
  OPEN_CONTEXT(confdir)
  Address address({package, section, option}, text_or_empty(value));
  LOOK_UP(address)
  if (uci_add_list(context.get(), &found) != UCI_OK) {
    log_error("uci_add_list %s failed.", address.shown.c_str());
    return kFailure;
  }
  COMMIT(found.p)
  return kSuccess;
}

unsigned int uci_stage_list_element(const char* package, const char* section, const char* option,
                                    const std::string& value) {
  OPEN_CONTEXT(nullptr)
  Address address({package, section, option});
  address.text += '=' + value;
  LOOK_UP(address)
  if (uci_add_list(context.get(), &found) != UCI_OK || uci_save(context.get(), found.p) != UCI_OK) {
    log_error("uci_add_list %s failed.", address.shown.c_str());
    return kFailure;
  }
  return kSuccess;
}

unsigned int UciDelList(const char* confdir, const char* package, const char* section, const char* option,
                        const char* value) {
  OPEN_CONTEXT(confdir)
  Address address({package, section, option}, text_or_empty(value));
  LOOK_UP(address)
  if (uci_del_list(context.get(), &found) != UCI_OK) {
    log_error("uci_del_list %s failed.", address.shown.c_str());
    return kFailure;
  }
  COMMIT(found.p)
  return kSuccess;
}

unsigned int UciGetlist(const char* confdir, const char* package, const char* section, const char* option, char* out,
                        std::size_t element_size, std::size_t max_count, std::size_t* count) {
  OPEN_CONTEXT(confdir)
  Address address({package, section, option});
  LOOK_UP(address)
  if (!is_complete(found) || found.o == nullptr) {
    context->err = UCI_ERR_NOTFOUND;
    log_error("find tuple %s.%s.%s failed.", text_or_empty(package), text_or_empty(section), text_or_empty(option));
    return kFailure;
  }
  if (found.o->type != UCI_TYPE_LIST) {
    log_error("find tuple %s failed.", text_or_empty(option));
    return kFailure;
  }
  std::size_t copied = 0;
  uci_element* element = nullptr;
  uci_foreach_element(&found.o->v.list, element) {
    if (copied >= max_count) break;
    char* slot = out + copied * element_size;
    const std::size_t length = std::strlen(element->name);
    std::memcpy(slot, element->name, std::min(length, element_size));
    if (length < element_size) slot[length] = '\0';
    ++copied;
  }
  if (count != nullptr) *count = copied;
  return kSuccess;
}

int uci_count_sections(const char* package, const char* type) {
  const UciContextPtr context = open_context(nullptr);
  uci_package* loaded = nullptr;
  if (!context || uci_load(context.get(), package, &loaded) != UCI_OK) return -1;
  int count = 0;
  uci_element* element = nullptr;
  uci_foreach_element(&loaded->sections, element) {
    if (std::string_view(uci_to_section(element)->type) == type) ++count;
  }
  return count;
}

std::optional<std::string> uci_read(const char* package, const char* section, const char* option, std::size_t size) {
  std::string text(size, '\0');
  if (UciGetOption(nullptr, package, section, option, text.data(), size) != kSuccess) return std::nullopt;
  text.resize(std::strlen(text.c_str()));
  return text;
}

std::string uci_read_or(const char* package, const char* section, const char* option, std::size_t size,
                        const char* fallback) {
  return uci_read(package, section, option, size).value_or(fallback);
}

std::optional<std::vector<std::string>> uci_read_list(const char* package, const char* section, const char* option,
                                                      std::size_t element_size, std::size_t max_count) {
  std::string slots(element_size * max_count, '\0');
  std::size_t count = 0;
  if (UciGetlist(nullptr, package, section, option, slots.data(), element_size, max_count, &count) != kSuccess) {
    return std::nullopt;
  }
  std::vector<std::string> elements;
  for (std::size_t index = 0; index < count; ++index) {
    const char* slot = slots.data() + index * element_size;
    elements.emplace_back(slot, strnlen(slot, element_size));
  }
  return elements;
}

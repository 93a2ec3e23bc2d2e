// The UCI access layer on libuci's public interface, working on the calling thread's session.
#include "uci_access.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <new>
#include <optional>
#include <string_view>

#include <uci.h>

#include "platform/log.h"
#include "platform/section_cursor.h"
#include "platform/text.h"
#include "platform/uci_session.h"

namespace {

constexpr unsigned int kSuccess = 0;
constexpr unsigned int kFailure = 1;

// What of a character can stand behind a bound that it begins before.
constexpr std::size_t kRestOfCharacter = platform::kLongestCharacter - 1;

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
    shown.resize(platform::cut_utf8(shown, kUciAddressMax).size());
    text = shown;
  }
  std::string shown;
  std::string text;
};

// The calling thread's session, or one for this call alone, which commits when the call ends.
class CallSession {
 public:
  CallSession() {
    if (platform::UciSession::current() == nullptr) own_.emplace();
  }
  platform::UciSession* operator->() const { return platform::UciSession::current(); }
  platform::UciSession& operator*() const { return *platform::UciSession::current(); }

 private:
  std::optional<platform::UciSession> own_;
};

bool look_up(uci_context* context, Address& address, uci_ptr& found) {
  return uci_lookup_ptr(context, &found, address.text.data(), true) == UCI_OK;
}

// The whole package, whether it was loaded before or not; nullptr when it cannot be read.
uci_package* load(uci_context* context, const char* package) {
  if (package == nullptr || *package == '\0') return nullptr;
  std::string address = package;
  uci_ptr found{};
  return uci_lookup_ptr(context, &found, address.data(), true) == UCI_OK ? found.p : nullptr;
}

// The same without a walk through the package, where the section is a position and the address is whole. `option` is
// nullptr where the section itself is looked up.
bool look_up_to_read(platform::UciSession& session, uci_context* context, Address& address, uci_ptr& found,
                     const char* package, const char* section, const char* option) {
  const auto position = platform::SectionPosition::parse(text_or_empty(section));
  const bool is_whole = address.shown.size() < kUciAddressMax && (option == nullptr || *option != '\0');
  if (!position || !is_whole) return look_up(context, address, found);
  uci_package* const loaded = load(context, package);
  uci_section* const known = loaded == nullptr ? nullptr : session.cursor().find(*loaded, *position);
  if (known == nullptr) return look_up(context, address, found);
  found.p = loaded;
  found.s = known;
  found.option = option;
  return uci_lookup_ptr(context, &found, nullptr, true) == UCI_OK;
}

bool is_complete(const uci_ptr& found) { return (found.flags & uci_ptr::UCI_LOOKUP_COMPLETE) != 0; }

// What a failed step comes to. One that found no memory says nothing of the package: taken for an absent option or a
// list that is as it was, it would be written on. So it ends the request, which leaves what was not committed as it
// was.
unsigned int failure_of(const uci_context* context) {
  if (context == nullptr || context->err == UCI_ERR_MEM) throw std::bad_alloc();
  return kFailure;
}

// The steps that every wrapper begins with; they return from it on failure. Every message carries the name and line of
// the wrapper that failed, so the macro stands in the wrappers.
#define OPEN_CONTEXT(confdir, package)                                                \
  const CallSession session;                                                          \
  uci_context* const context = session->context_for(confdir, text_or_empty(package)); \
  if (context == nullptr) {                                                           \
    log_error("alloc uci context failed");                                            \
    return failure_of(context);                                                       \
  }
#define REQUIRE_FOUND(is_found, address)                             \
  if (!(is_found)) {                                                 \
    log_error("uci_lookup_ptr %s failed.", (address).shown.c_str()); \
    return failure_of(context);                                      \
  }
#define LOOK_UP(address) \
  uci_ptr found{};       \
  REQUIRE_FOUND(look_up(context, address, found), address)
#define LOOK_UP_TO_READ(address, package, section, option) \
  uci_ptr found{};                                         \
  REQUIRE_FOUND(look_up_to_read(*session, context, address, found, package, section, option), address)
// A commit that fails later is told in the log alone: the change itself was made.
#define MARK_CHANGED(package) session->mark_changed(package, __func__, __LINE__)

}  // namespace

unsigned int UciCheckSection(const char* confdir, const char* package, const char* section) {
  OPEN_CONTEXT(confdir, package)
  Address address({package, section});
  LOOK_UP_TO_READ(address, package, section, nullptr)
  if (is_complete(found)) return kSuccess;
  log_error("find tuple failed.");
  return kFailure;
}

unsigned int UciCreatSection(const char* confdir, const char* package, const char* type, const char* name) {
  OPEN_CONTEXT(confdir, package)
  Address address({package, name}, text_or_empty(type));
  LOOK_UP(address)
  if (uci_set(context, &found) != UCI_OK) {
    log_error("uci_set %s.%s=%s failed.", text_or_empty(package), text_or_empty(type), text_or_empty(name));
    return failure_of(context);
  }
  MARK_CHANGED(found.p);
  return kSuccess;
}

unsigned int UciCreateAnonymousSection(const char* confdir, const char* package, const char* type) {
  OPEN_CONTEXT(confdir, package)
  uci_package* loaded = load(context, package);
  if (loaded == nullptr) {
    log_error("uci_load %s failed.", text_or_empty(package));
    return failure_of(context);
  }
  uci_section* added = nullptr;
  if (type == nullptr || uci_add_section(context, loaded, type, &added) != UCI_OK) {
    log_error("uci_add_section %s.%s failed.", package, text_or_empty(type));
    return failure_of(context);
  }
  MARK_CHANGED(loaded);
  return kSuccess;
}

unsigned int UciDelSection(const char* confdir, const char* package, const char* section) {
  OPEN_CONTEXT(confdir, package)
  Address address({package, section});
  LOOK_UP(address)
  if (uci_delete(context, &found) != UCI_OK) return failure_of(context);
  MARK_CHANGED(found.p);
  return kSuccess;
}

unsigned int UciSetOption(const char* confdir, const char* package, const char* section, const char* option,
                          const char* value) {
  OPEN_CONTEXT(confdir, package)
  Address address({package, section, option}, text_or_empty(value));
  LOOK_UP(address)
  if (uci_set(context, &found) != UCI_OK) {
    log_error("uci_set %s failed.", address.shown.c_str());
    return failure_of(context);
  }
  MARK_CHANGED(found.p);
  return kSuccess;
}

unsigned int UciGetOption(const char* confdir, const char* package, const char* section, const char* option, char* out,
                          std::size_t size) {
  OPEN_CONTEXT(confdir, package)
  Address address({package, section, option});
  LOOK_UP_TO_READ(address, package, section, text_or_empty(option))
  if (!is_complete(found) || found.o == nullptr || found.o->type != UCI_TYPE_STRING) {
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
  OPEN_CONTEXT(confdir, package)
  Address address({package, section, option});
  LOOK_UP(address)
  if (uci_delete(context, &found) != UCI_OK) return failure_of(context);
  MARK_CHANGED(found.p);
  return kSuccess;
}

unsigned int UciAddList(const char* confdir, const char* package, const char* section, const char* option,
                        const char* value) {
  OPEN_CONTEXT(confdir, package)
  Address address({package, section, option}, text_or_empty(value));
  LOOK_UP(address)
  if (uci_add_list(context, &found) != UCI_OK) {
    log_error("uci_add_list %s failed.", address.shown.c_str());
    return failure_of(context);
  }
  MARK_CHANGED(found.p);
  return kSuccess;
}

unsigned int UciDelList(const char* confdir, const char* package, const char* section, const char* option,
                        const char* value) {
  OPEN_CONTEXT(confdir, package)
  Address address({package, section, option}, text_or_empty(value));
  LOOK_UP(address)
  if (uci_del_list(context, &found) != UCI_OK) {
    log_error("uci_del_list %s failed.", address.shown.c_str());
    return failure_of(context);
  }
  MARK_CHANGED(found.p);
  return kSuccess;
}

unsigned int UciGetlist(const char* confdir, const char* package, const char* section, const char* option, char* out,
                        std::size_t element_size, std::size_t max_count, std::size_t* count) {
  OPEN_CONTEXT(confdir, package)
  Address address({package, section, option});
  LOOK_UP_TO_READ(address, package, section, text_or_empty(option))
  if (!is_complete(found) || found.o == nullptr) {
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

std::optional<int> uci_count_sections(const char* package, const char* type) {
  const CallSession session;
  uci_context* const context = session->context_for(nullptr, package);
  const uci_package* loaded = context == nullptr ? nullptr : load(context, package);
  if (loaded == nullptr && failure_of(context) == kFailure) return std::nullopt;
  int count = 0;
  uci_element* element = nullptr;
  uci_foreach_element(&loaded->sections, element) {
    if (std::string_view(uci_to_section(element)->type) == type) ++count;
  }
  return count;
}

std::optional<std::string> uci_read(const char* package, const char* section, const char* option, std::size_t size) {
  if (size == 0) return std::nullopt;
  std::string text(size + kRestOfCharacter, '\0');
  if (UciGetOption(nullptr, package, section, option, text.data(), text.size()) != kSuccess) return std::nullopt;
  return std::string(platform::cut_utf8(text.c_str(), size - 1));
}

std::string uci_read_or(const char* package, const char* section, const char* option, std::size_t size,
                        const char* fallback) {
  return uci_read(package, section, option, size).value_or(fallback);
}

std::optional<std::vector<std::string>> uci_read_list(const char* package, const char* section, const char* option,
                                                      std::size_t element_size, std::size_t max_count) {
  const std::size_t slot_size = element_size + kRestOfCharacter;
  std::string slots(slot_size * max_count, '\0');
  std::size_t count = 0;
  if (UciGetlist(nullptr, package, section, option, slots.data(), slot_size, max_count, &count) != kSuccess) {
    return std::nullopt;
  }
  std::vector<std::string> elements;
  for (std::size_t index = 0; index < count; ++index) {
    const char* slot = slots.data() + index * slot_size;
    elements.emplace_back(platform::cut_utf8({slot, strnlen(slot, slot_size)}, element_size));
  }
  return elements;
}

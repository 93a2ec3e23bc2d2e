// Contexts, their folders, error texts, and the small functions of the interface.
#include "context.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "package_parser.h"

namespace uci {
namespace {

constexpr std::array<const char*, 7> kErrorTexts{
    "Success", "Out of memory", "Invalid argument", "Entry not found", "I/O error", "Parse error", "Duplicate entry",
};

std::string error_text(const uci_context* context, const char* prefix) {
  const int code = context == nullptr ? int{UCI_ERR_INVAL} : context->err;
  const bool known = code >= 0 && static_cast<std::size_t>(code) < kErrorTexts.size();
  std::string text = prefix == nullptr ? "" : std::string(prefix) + ": ";
  text += known ? kErrorTexts[static_cast<std::size_t>(code)] : "Unknown error";
  if (code == UCI_ERR_PARSE && !context->pctx->reason.empty()) {
    const uci_parse_context& where = *context->pctx;
    text += " (" + where.reason + ") at line " + std::to_string(where.line) + ", byte " + std::to_string(where.byte);
  }
  return text;
}

void add_flag(uci_context& context, uci_flags flag) { context.flags = static_cast<uci_flags>(context.flags | flag); }

char* new_text(const char* text) {
  char* copy = strdup(text);
  if (copy == nullptr) throw std::bad_alloc();
  return copy;
}

void require_text(const char* text) {
  if (text == nullptr) throw Failure{UCI_ERR_INVAL};
}

std::unique_ptr<uci_backend> file_backend() {
  auto backend = std::make_unique<uci_backend>();
  backend->e.type = UCI_TYPE_BACKEND;
  backend->e.name = new_text("file");
  return backend;
}

void initialise(uci_context& context) {
  list_init(context.root);
  list_init(context.backends);
  list_init(context.delta_path);
  context.pctx = new uci_parse_context;
  context.backend = file_backend().release();
  list_add_tail(context.backends, context.backend->e.list);
  context.confdir = new_text(UCI_CONFDIR);
  context.savedir = new_text(UCI_SAVEDIR);
  context.conf2dir = new_text(UCI_CONF2DIR);
  new_path(context.delta_path, UCI_SAVEDIR);
  add_flag(context, UCI_FLAG_STRICT);
  add_flag(context, UCI_FLAG_SAVED_DELTA);
}

bool is_config_name(const char* name) { return is_type(name) && std::strchr(name, '.') == nullptr; }

bool is_folder(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

struct CloseFolder {
  void operator()(DIR* folder) const noexcept { closedir(folder); }
};

std::vector<std::string> config_names(const uci_context& context) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, CloseFolder> folder(opendir(context.confdir));
  while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
    const std::string path = std::string(context.confdir) + "/" + entry->d_name;
    if (is_config_name(entry->d_name) && !is_folder(path)) names.emplace_back(entry->d_name);
  }
  std::ranges::sort(names);
  return names;
}

// One allocation: the pointers, then the texts that they point at.
char** one_allocation(const std::vector<std::string>& names) {
  std::size_t size = (names.size() + 1) * sizeof(char*);
  for (const std::string& name : names) size += name.size() + 1;
  char** list = static_cast<char**>(std::malloc(size));
  if (list == nullptr) throw std::bad_alloc();
  char* text = reinterpret_cast<char*>(list + names.size() + 1);
  for (std::size_t index = 0; index < names.size(); ++index) {
    list[index] = text;
    std::memcpy(text, names[index].c_str(), names[index].size() + 1);
    text += names[index].size() + 1;
  }
  list[names.size()] = nullptr;
  return list;
}

// The next word of the line that is being read; a fresh line for `fresh`.
std::string next_argument(uci_parse_context& state, std::FILE* stream, bool fresh) {
  try {
    if (fresh) {
      state.arguments.use(stream);
      if (!state.arguments.next_line()) return "";
    }
    return state.arguments.word().value_or("");
  } catch (const WordError& error) {
    state.reason = error.reason;
    state.line = state.arguments.line();
    state.byte = state.arguments.length();
    throw Failure{UCI_ERR_PARSE};
  }
}

// MurmurHash2's mixing, byte after byte, as the platform's tools compare option sets with it.
class OptionHash {
 public:
  void add(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (; size >= 4; size -= 4, bytes += 4) {
      std::uint32_t word =
          bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 | std::uint32_t{bytes[3]} << 24;
      word *= kMultiplier;
      word ^= word >> kShift;
      word *= kMultiplier;
      hash_ = hash_ * kMultiplier ^ word;
    }
    if (size > 2) hash_ ^= std::uint32_t{bytes[2]} << 16;
    if (size > 1) hash_ ^= std::uint32_t{bytes[1]} << 8;
    if (size > 0) hash_ = (hash_ ^ bytes[0]) * kMultiplier;
    hash_ ^= hash_ >> 13;
    hash_ *= kMultiplier;
    hash_ ^= hash_ >> 15;
  }
  void add_text(const char* text) { add(text, std::strlen(text) + 1); }
  [[nodiscard]] std::uint32_t value() const { return hash_; }

 private:
  static constexpr std::uint32_t kMultiplier = 0x5bd1e995;
  static constexpr int kShift = 24;
  std::uint32_t hash_ = 0xdeadc0de;
};

}  // namespace

void fail_parse(uci_context& context, const std::string& reason, int line, std::size_t byte) {
  context.pctx->reason = reason;
  context.pctx->line = line;
  context.pctx->byte = byte;
  if ((context.flags & UCI_FLAG_PERROR) != 0) print_parse_error(context);
  throw Failure{UCI_ERR_PARSE};
}

void print_parse_error(const uci_context& context) {
  uci_context shown{};
  shown.err = UCI_ERR_PARSE;
  shown.pctx = context.pctx;
  std::fprintf(stderr, "%s\n", error_text(&shown, nullptr).c_str());
}

}  // namespace uci

using uci::Failure;
using uci::guarded;

extern "C" {

uci_context* uci_alloc_context(void) {
  try {
    auto context = std::make_unique<uci_context>();
    uci::initialise(*context);
    return context.release();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void uci_free_context(uci_context* ctx) {
  if (ctx == nullptr) return;
  while (!uci_list_empty(&ctx->root)) uci::free_package(uci_to_package(list_to_element(ctx->root.next)));
  while (!uci_list_empty(&ctx->delta_path)) uci::free_element(list_to_element(ctx->delta_path.next));
  std::free(ctx->backend->e.name);
  delete ctx->backend;
  std::free(ctx->confdir);
  std::free(ctx->savedir);
  std::free(ctx->conf2dir);
  delete ctx->pctx;
  delete ctx;
}

void uci_perror(uci_context* ctx, const char* str) { std::fprintf(stderr, "%s\n", uci::error_text(ctx, str).c_str()); }

void uci_get_errorstr(uci_context* ctx, char** dest, const char* str) {
  if (dest != nullptr) *dest = strdup(uci::error_text(ctx, str).c_str());
}

int uci_set_confdir(uci_context* ctx, const char* dir) {
  return guarded(ctx, [&](uci_context& context) {
    uci::require_text(dir);
    uci::replace_text(context.confdir, dir);
  });
}

int uci_set_conf2dir(uci_context* ctx, const char* dir) {
  if (ctx == nullptr) return UCI_ERR_INVAL;
  const bool off = dir == nullptr || *dir == '\0';
  char* copy = off ? nullptr : strdup(dir);
  if (!off && copy == nullptr) return UCI_ERR_MEM;
  std::free(ctx->conf2dir);
  ctx->conf2dir = copy;
  return UCI_OK;
}

int uci_set_savedir(uci_context* ctx, const char* dir) {
  return guarded(ctx, [&](uci_context& context) {
    uci::require_text(dir);
    const std::string directory = dir;
    if (uci_element* known = uci::find(context.delta_path, directory)) uci::free_element(known);
    uci::new_path(context.delta_path, directory);
    uci::replace_text(context.savedir, directory);
  });
}

int uci_add_delta_path(uci_context* ctx, const char* dir) {
  return guarded(ctx, [&](uci_context& context) {
    uci::require_text(dir);
    if (uci::find(context.delta_path, dir) != nullptr) throw Failure{UCI_ERR_DUPLICATE};
    uci_element* added = uci::new_path(context.delta_path, dir);
    uci_list& last = *added->list.prev;  // the savedir, which stays last
    uci::list_remove(added->list);
    uci::list_insert(last, added->list);
  });
}

int uci_list_configs(uci_context* ctx, char*** list) {
  return guarded(ctx, [&](uci_context& context) {
    if (list == nullptr) throw Failure{UCI_ERR_INVAL};
    const std::vector<std::string> names = uci::config_names(context);
    if (names.empty()) throw Failure{UCI_ERR_NOTFOUND};
    *list = uci::one_allocation(names);
  });
}

int uci_parse_argument(uci_context* ctx, FILE* stream, char** str, char** result) {
  return guarded(ctx, [&](uci_context& context) {
    if (stream == nullptr || str == nullptr || result == nullptr) throw Failure{UCI_ERR_INVAL};
    context.pctx->word = uci::next_argument(*context.pctx, stream, *str == nullptr);
    *result = context.pctx->word.data();
    *str = *result;
  });
}

int uci_set_backend(uci_context* ctx, const char* name) {
  return guarded(ctx, [&](uci_context&) {
    uci::require_text(name);
    if (std::strcmp(name, "file") != 0) throw Failure{UCI_ERR_NOTFOUND};
  });
}

bool uci_validate_text(const char* str) {
  if (str == nullptr) return false;
  return std::all_of(str, str + std::strlen(str), [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte >= ' ' || byte == '\t' || byte == '\n' || byte == '\r';
  });
}

void uci_parse_section(uci_section* s, const uci_parse_option* opts, int n_opts, uci_option** tb) {
  std::fill(tb, tb + n_opts, nullptr);
  uci_element* element = nullptr;
  uci_foreach_element(&s->options, element) {
    uci_option* option = uci_to_option(element);
    for (int index = 0; index < n_opts; ++index) {
      const bool fits = tb[index] == nullptr && option->type == opts[index].type &&
                        std::strcmp(opts[index].name, option->e.name) == 0;
      if (!fits) continue;
      tb[index] = option;
      break;
    }
  }
}

uint32_t uci_hash_options(uci_option** tb, int n_opts) {
  uci::OptionHash hash;
  for (int index = 0; index < n_opts; ++index) {
    uci_option* option = tb[index];
    if (option == nullptr) continue;
    hash.add_text(option->e.name);
    hash.add(&option->type, sizeof(option->type));
    if (option->type == UCI_TYPE_STRING) {
      hash.add_text(option->v.string);
      continue;
    }
    uci_element* item = nullptr;
    uci_foreach_element(&option->v.list, item) hash.add_text(item->name);
  }
  return hash.value();
}

}  // extern "C"

// Contexts and their folders.
#include "context.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace uci {
namespace {

char* new_text(const char* text) {
  char* copy = strdup(text);
  if (copy == nullptr) throw std::bad_alloc();
  return copy;
}

void require_text(const char* text) {
  if (text == nullptr) throw Failure{UCI_ERR_INVAL};
}

// What it owns is freed with it, also when it could not be completed.
void initialise(uci_context& context) {
  context.pctx = new uci_parse_context;
  context.backend = new uci_backend{};
  context.backend->e.type = UCI_TYPE_BACKEND;
  list_add_tail(context.backends, context.backend->e.list);
  context.backend->e.name = new_text("file");
  context.confdir = new_text(UCI_CONFDIR);
  context.savedir = new_text(UCI_SAVEDIR);
  context.conf2dir = new_text(UCI_CONF2DIR);
  new_path(context.delta_path, UCI_SAVEDIR);
  context.flags = static_cast<uci_flags>(UCI_FLAG_STRICT | UCI_FLAG_SAVED_DELTA);
}

struct FreeContext {
  void operator()(uci_context* context) const noexcept { uci_free_context(context); }
};

uci_context* new_context() {
  std::unique_ptr<uci_context, FreeContext> context(new uci_context{});
  list_init(context->root);
  list_init(context->backends);
  list_init(context->delta_path);
  initialise(*context);
  return context.release();
}

}  // namespace
}  // namespace uci

using uci::Failure;
using uci::guarded;

extern "C" {

uci_context* uci_alloc_context(void) {
  try {
    return uci::new_context();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void uci_free_context(uci_context* ctx) {
  if (ctx == nullptr) return;
  while (!uci_list_empty(&ctx->root)) uci::free_package(uci_to_package(list_to_element(ctx->root.next)));
  while (!uci_list_empty(&ctx->delta_path)) uci::free_element(list_to_element(ctx->delta_path.next));
  if (ctx->backend != nullptr) std::free(ctx->backend->e.name);
  delete ctx->backend;
  std::free(ctx->confdir);
  std::free(ctx->savedir);
  std::free(ctx->conf2dir);
  delete ctx->pctx;
  delete ctx;
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
    uci_element* known = uci::find(context.delta_path, dir);
    uci_element* added = uci::new_path(context.delta_path, directory);
    try {
      uci::replace_text(context.savedir, directory);
    } catch (const std::bad_alloc&) {
      uci::free_element(added);
      throw;
    }
    if (known != nullptr) uci::free_element(known);
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

int uci_set_backend(uci_context* ctx, const char* name) {
  return guarded(ctx, [&](uci_context&) {
    uci::require_text(name);
    if (std::strcmp(name, "file") != 0) throw Failure{UCI_ERR_NOTFOUND};
  });
}

}  // extern "C"

// Error texts: what ctx->err means, and where a text went wrong.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "context.h"

namespace uci {
namespace {

constexpr std::array<const char*, 7> kErrorTexts{
    "Success", "Out of memory", "Invalid argument", "Entry not found", "I/O error", "Parse error", "Duplicate entry",
};

std::string error_text(int code, const uci_parse_context* where, const char* prefix) {
  const bool known = code >= 0 && static_cast<std::size_t>(code) < kErrorTexts.size();
  std::string text = prefix == nullptr ? "" : std::string(prefix) + ": ";
  text += known ? kErrorTexts[static_cast<std::size_t>(code)] : "Unknown error";
  if (code == UCI_ERR_PARSE && where != nullptr && !where->reason.empty()) {
    text += " (" + where->reason + ") at line " + std::to_string(where->line) + ", byte " + std::to_string(where->byte);
  }
  return text;
}

std::string error_text(const uci_context* context, const char* prefix) {
  if (context == nullptr) return error_text(UCI_ERR_INVAL, nullptr, prefix);
  return error_text(context->err, context->pctx, prefix);
}

}  // namespace

void fail_parse(uci_context& context, const std::string& reason, int line, std::size_t byte) {
  context.pctx->reason = reason;
  context.pctx->line = line;
  context.pctx->byte = byte;
  if ((context.flags & UCI_FLAG_PERROR) != 0) {
    std::fprintf(stderr, "%s\n", error_text(UCI_ERR_PARSE, context.pctx, nullptr).c_str());
  }
  throw Failure{UCI_ERR_PARSE};
}

}  // namespace uci

extern "C" {

void uci_perror(uci_context* ctx, const char* str) {
  try {
    std::fprintf(stderr, "%s\n", uci::error_text(ctx, str).c_str());
  } catch (const std::bad_alloc&) {
    std::fputs("Out of memory\n", stderr);
  }
}

void uci_get_errorstr(uci_context* ctx, char** dest, const char* str) {
  if (dest == nullptr) return;
  try {
    *dest = strdup(uci::error_text(ctx, str).c_str());
  } catch (const std::bad_alloc&) {
    *dest = nullptr;
  }
}

}  // extern "C"

// What a context holds behind its public face, and the border between exceptions and result codes.
#pragma once

#include <exception>
#include <new>
#include <string>

#include "elements.h"
#include "words.h"

// The opaque part of a context.
struct uci_parse_context {
  // Where the last file that could not be parsed went wrong; `reason` is empty otherwise.
  std::string reason;
  int line = 0;
  std::size_t byte = 0;

  // Of uci_parse_argument.
  uci::StreamLines lines;
  uci::WordReader arguments{lines};
  std::string word;  // its last result
};

namespace uci {

// A file that cannot be parsed: remembers where, prints it where UCI_FLAG_PERROR asks for that, and throws.
[[noreturn]] void fail_parse(uci_context& context, const std::string& reason, int line, std::size_t byte);

// Runs the body of a public function: clears ctx->err, turns a Failure into its code.
template <class Body>
int guarded(uci_context* context, Body&& body) {
  if (context == nullptr) return UCI_ERR_INVAL;
  context->err = UCI_OK;
  context->pctx->reason.clear();
  try {
    body(*context);
  } catch (const Failure& failure) {
    context->err = failure.code;
  } catch (const std::bad_alloc&) {
    context->err = UCI_ERR_MEM;
  } catch (const std::exception&) {
    context->err = UCI_ERR_UNKNOWN;
  }
  return context->err;
}

}  // namespace uci

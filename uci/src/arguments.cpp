// Words of batch input, and which texts are values.
#include <algorithm>
#include <cstring>
#include <string>

#include "context.h"

namespace uci {
namespace {

// The next word of the line that is being read, in state.word; a fresh line for `fresh`.
void read_argument(uci_parse_context& state, std::FILE* stream, bool fresh) {
  state.word.clear();
  try {
    if (fresh) {
      state.lines.use(stream);
      if (!state.arguments.next_line()) return;
    }
    state.arguments.read_word(state.word);
  } catch (const WordError& error) {
    state.reason = error.reason;
    state.line = state.arguments.line();
    state.byte = state.arguments.length();
    throw Failure{UCI_ERR_PARSE};
  }
}

}  // namespace
}  // namespace uci

extern "C" {

int uci_parse_argument(uci_context* ctx, FILE* stream, char** str, char** result) {
  return uci::guarded(ctx, [&](uci_context& context) {
    if (stream == nullptr || str == nullptr || result == nullptr) throw uci::Failure{UCI_ERR_INVAL};
    uci::read_argument(*context.pctx, stream, *str == nullptr);
    *result = context.pctx->word.data();
    *str = *result;
  });
}

bool uci_validate_text(const char* str) {
  if (str == nullptr) return false;
  return std::all_of(str, str + std::strlen(str), [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte >= ' ' || byte == '\t' || byte == '\n' || byte == '\r';
  });
}

}  // extern "C"

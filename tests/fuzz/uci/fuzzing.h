// What the fuzz targets share: texts to packages and back.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include <uci.h>

#include "require.h"

namespace fuzzing {

struct FreeContext {
  void operator()(uci_context* context) const noexcept { uci_free_context(context); }
};
using ContextPtr = std::unique_ptr<uci_context, FreeContext>;

struct CloseStream {
  void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
};
using StreamPtr = std::unique_ptr<std::FILE, CloseStream>;

// A stream on the text, which must outlive it.
inline StreamPtr stream_on(std::string& text) {
  StreamPtr stream(text.empty() ? std::fopen("/dev/null", "r") : fmemopen(text.data(), text.size(), "r"));
  require(stream != nullptr, "no stream");
  return stream;
}

inline ContextPtr new_context(bool strict) {
  ContextPtr context(uci_alloc_context());
  require(context != nullptr, "no context");
  if (!strict) context->flags = static_cast<uci_flags>(context->flags & ~UCI_FLAG_STRICT);
  return context;
}

// The package "pkg" of a text; nullptr when it cannot be read.
inline uci_package* import_single(uci_context* context, std::string text) {
  const StreamPtr stream = stream_on(text);
  uci_package* package = nullptr;
  return uci_import(context, stream.get(), "pkg", &package, true) == UCI_OK ? package : nullptr;
}

inline std::string export_text(uci_context* context, uci_package* package) {
  char* text = nullptr;
  std::size_t size = 0;
  StreamPtr stream(open_memstream(&text, &size));
  require(stream != nullptr && uci_export(context, stream.get(), package, package == nullptr) == UCI_OK, "no export");
  stream.reset();
  std::string result(text, size);
  std::free(text);
  return result;
}

}  // namespace fuzzing

// Any bytes as a package text: they are read or refused, and what was read survives being written and read again.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzzing.h"

namespace {

using fuzzing::ContextPtr;
using fuzzing::StreamPtr;

void check_round_trip(const std::string& text, bool strict) {
  const ContextPtr context = fuzzing::new_context(strict);
  uci_package* package = fuzzing::import_single(context.get(), text);
  if (package == nullptr) return;
  const std::string written = fuzzing::export_text(context.get(), package);
  const ContextPtr other = fuzzing::new_context(true);
  uci_package* again = fuzzing::import_single(other.get(), written);
  fuzzing::require(again != nullptr, "what was written cannot be read");
  fuzzing::require(fuzzing::export_text(other.get(), again) == written, "what was written reads differently");
}

void import_packages(std::string text, bool strict) {
  const ContextPtr context = fuzzing::new_context(strict);
  const StreamPtr stream = fuzzing::stream_on(text);
  uci_import(context.get(), stream.get(), nullptr, nullptr, false);
  fuzzing::export_text(context.get(), nullptr);
}

void merge(std::string text, bool strict) {
  const ContextPtr context = fuzzing::new_context(strict);
  uci_package* package =
      fuzzing::import_single(context.get(), "config t s\n option a 1\n list l x\nconfig t\n option b 2\n");
  fuzzing::require(package != nullptr, "no package to merge into");
  const StreamPtr stream = fuzzing::stream_on(text);
  uci_import(context.get(), stream.get(), "pkg", &package, true);
  fuzzing::export_text(context.get(), package);
}

// As batch input: words until the end.
void cut_into_words(std::string text) {
  const ContextPtr context = fuzzing::new_context(true);
  const StreamPtr stream = fuzzing::stream_on(text);
  while (std::feof(stream.get()) == 0) {
    char* position = nullptr;
    char* word = nullptr;
    do {
      if (uci_parse_argument(context.get(), stream.get(), &position, &word) != UCI_OK) return;
    } while (*word != '\0');
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const bool strict = (data[0] & 1U) != 0;
  switch (data[0] >> 1U & 3U) {
    case 0:
      check_round_trip(text, strict);
      break;
    case 1:
      import_packages(text, strict);
      break;
    case 2:
      merge(text, strict);
      break;
    default:
      cut_into_words(text);
  }
  return 0;
}

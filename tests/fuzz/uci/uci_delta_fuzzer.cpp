// Any bytes as a delta file: every record in it survives being written and read again, and applying them leaves a
// package that can be written and read.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "delta.h"
#include "fuzzing.h"

namespace {

using fuzzing::ContextPtr;
using fuzzing::StreamPtr;

constexpr const char* kPackage =
    "config t s\n option a 1\n option b 2\n list l x\n list l y\nconfig t\n option c 3\nconfig u n\n";

// A record that owns its texts.
struct Kept {
  uci_command command;
  std::string section;
  std::optional<std::string> option;
  std::optional<std::string> value;
  bool operator==(const Kept&) const = default;
};

std::optional<std::string> kept_text(const char* text) {
  return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

std::vector<Kept> read(std::string text, std::string& written) {
  std::vector<Kept> records;
  const StreamPtr stream = fuzzing::stream_on(text);
  uci::StreamLines lines(stream.get());
  uci::read_records(lines, "t", [&](const uci::Record& record) {
    records.push_back({record.command, record.section, kept_text(record.option), kept_text(record.value)});
    written += uci::format_record("t", record);
  });
  return records;
}

void check_records(const std::string& text) {
  std::string written;
  std::string again;
  const std::vector<Kept> records = read(text, written);
  fuzzing::require(read(written, again) == records, "a record reads differently when it was written");
  fuzzing::require(again == written, "a record is written differently when it was read");
}

uci_package* import_base(uci_context* context) {
  std::string text = kPackage;
  const StreamPtr stream = fuzzing::stream_on(text);
  uci_package* package = nullptr;
  fuzzing::require(uci_import(context, stream.get(), "t", &package, true) == UCI_OK, "no package");
  return package;
}

void check_applying(std::string text) {
  const ContextPtr context = fuzzing::new_context(true);
  uci_package* package = import_base(context.get());
  const StreamPtr stream = fuzzing::stream_on(text);
  uci::StreamLines lines(stream.get());
  uci::apply_records(lines, *package);
  const std::string written = fuzzing::export_text(context.get(), package);
  const ContextPtr other = fuzzing::new_context(false);  // two sections may have one name now
  fuzzing::require(fuzzing::import_single(other.get(), written) != nullptr, "what was applied cannot be read");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  check_records(text);
  check_applying(text);
  return 0;
}

// Delta files: the staged changes of a package, one record a line.
#pragma once

#include <functional>
#include <string>

#include "elements.h"
#include "lines.h"

namespace uci {

// One record, its texts valid during the call that gets it. `option` and `value` may be nullptr.
struct Record {
  uci_command command;
  const char* section;
  const char* option;
  const char* value;
};

// The record as a line of a delta file.
std::string format_record(std::string_view package, const Record& record);
Record record_of(const uci_delta& delta);

// Reads the records of `package`. Lines that are no record of it are passed over.
void read_records(LineSource& lines, std::string_view package, const std::function<void(const Record&)>& use);

// Reads the records, notes them in saved_delta where the context asks for it, and applies them; one that no longer
// applies is passed over. Returns the number of those that did.
int apply_records(LineSource& lines, uci_package& package);

}  // namespace uci

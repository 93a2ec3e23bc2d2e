// Any bytes as the message log: every line splits or not, and the fields keep their bounds from line to line.
#include "require.h"
#include "system/log_line.h"

namespace {

void check(const LogFields& fields) {
  fuzzing::require(fields.time.back() == '\0' && fields.category.back() == '\0', "a field without its end");
  fuzzing::require(fields.message.size() <= 255, "a message's bound");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text = fuzzing::text_of(data, size);
  LogFields fields;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(line.size() == text.size() ? line.size() : line.size() + 1);
    const LogFields before = fields;
    const int result = fill_log_msg_value(line, fields);
    fuzzing::require(result == 0 || result == 1, "a result");
    fuzzing::require(result == 0 || (fields.time == before.time && fields.message == before.message),
                     "a line that does not split left something");
    check(fields);
  }
  return 0;
}

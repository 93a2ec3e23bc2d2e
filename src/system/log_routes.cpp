// GET /api/v1/system/log/message and POST /api/v1/system/log/clear.
#include <optional>
#include <string>

#include "answer/answer.h"
#include "handlers.h"
#include "platform/console.h"
#include "platform/file.h"
#include "platform/line_reader.h"
#include "system/log_line.h"
#include "system_helpers.h"

namespace {

constexpr const char* kLogPath = "/var/log/messages.log";
constexpr std::size_t kLineMax = 511;

// The entries of the lines that split; nullopt when the log cannot be read.
std::optional<json::ListText> read_entries() {
  platform::LineReader lines(platform::open_file(kLogPath, "r"), kLineMax);
  if (!lines.is_open()) return std::nullopt;
  json::ListText entries;
  LogFields fields;
  for (std::string line; lines.next(line);) {
    if (fill_log_msg_value(without_line_end(line), fields) != 0) continue;
    json::ObjectText entry;
    entry.add("time", fields.time.data()).add("category", fields.category.data()).add("msg", fields.message);
    entries.add(std::move(entry));
  }
  if (lines.failed()) return std::nullopt;
  return entries;
}

json::ObjectText read_log() {
  std::optional<json::ListText> entries = json::ListText();
  if (!platform::file_exists(kLogPath)) {
    console_print("log no\n");
  } else if (entries = read_entries(); !entries) {
    console_print(" Fail to open file\n");
  }
  const int result = entries ? 0 : 1;
  console_print("log end ret:%d\n", result);
  json::ObjectText document = json::result_text(result);
  if (entries) document.add("version", 1).add("systemlogMsg", std::move(*entries));
  return document;
}

}  // namespace

int handle_get_system_log(FCGX_Request* request) { return answer(request, read_log()); }

int handle_clear_system_log(FCGX_Request* request, const char* /*body*/) {
  return answer_then(request, answers::kCleared,
                     [] { os_system("/bin/mv /var/log/messages.log /var/log/messages.log.old"); });
}

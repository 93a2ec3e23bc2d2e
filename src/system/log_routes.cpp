// GET /api/v1/system/log/message and POST /api/v1/system/log/clear.
#include "answer/answer.h"
#include "handlers.h"
#include "platform/console.h"
#include "platform/file.h"
#include "platform/process.h"
#include "system/log_line.h"
#include "system_helpers.h"

namespace {

constexpr const char* kLogPath = "/var/log/messages.log";
constexpr std::size_t kLineSize = 512;

json::JsonPtr read_entries(std::string_view text) {
  json::JsonPtr entries = json::new_array();
  LogFields fields;
  for (const std::string& line : platform::split_lines(text, kLineSize)) {
    if (fill_log_msg_value(without_line_end(line), fields) != 0) continue;
    json::JsonPtr entry = json::new_object();
    json::add(entry.get(), "time", fields.time.data());
    json::add(entry.get(), "category", fields.category.data());
    json::add(entry.get(), "msg", fields.message);
    json::append(entries.get(), std::move(entry));
  }
  return entries;
}

}  // namespace

int handle_get_system_log(FCGX_Request* request) {
  int result = 0;
  std::string text;
  if (!platform::file_exists(kLogPath)) {
    console_print("log no\n");
  } else if (std::optional<std::string> content = platform::read_file(kLogPath)) {
    text = std::move(*content);
  } else {
    console_print(" Fail to open file\n");
    result = 1;
  }
  console_print("log end ret:%d\n", result);
  const json::JsonPtr document = json::new_object();
  json::add(document.get(), "result", result);
  if (result == 0) {
    json::add(document.get(), "version", 1);
    json::add(document.get(), "systemlogMsg", read_entries(text));
  }
  return answer(request, document);
}

int handle_clear_system_log(FCGX_Request* request, const char* /*body*/) {
  answer(request, R"({"result": 0, "version": 1})");
  os_system("/bin/mv /var/log/messages.log /var/log/messages.log.old");
  return 0;
}

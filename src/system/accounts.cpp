// POST /api/v1/accounts: the administrator's user name and password.
#include <cstdio>
#include <optional>
#include <string>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "handlers.h"
#include "platform/file.h"
#include "platform/log.h"
#include "platform/process.h"
#include "platform/text.h"
#include "system_helpers.h"
#include "uci_section.h"

namespace {

constexpr std::size_t kUserMax = 15;
constexpr std::size_t kPasswordMax = 63;
constexpr const char* kPasswordFile = "/etc/apfpasswd";
constexpr unsigned int kOwnerOnly = 0600;

// The password reaches `passwd` on its standard input: it stands in no process list.
void set_admin_password(const std::string& password) {
  const std::string twice = password + '\n' + password + '\n';
  platform::run({"passwd", "admin"}, {.input = twice, .drop_errors = true});
}

// A text of 1 to `most` bytes without a line's end.
std::optional<std::string> read_text(const json::Document& document, const char* key, std::size_t most) {
  std::optional<std::string> text = document->text(key);
  if (!text || text->empty() || text->size() > most || text->find_first_of("\r\n") != std::string::npos)
    return std::nullopt;
  return text;
}

}  // namespace

int handle_set_accounts(FCGX_Request* request, const char* body) {
  const json::Document document(body);
  if (!document) {
    std::fputs("1Failed to parse JSON\n", stderr);
    return answer(request, answers::kUnusable);
  }
  const std::optional<std::string> user = read_text(document, "newUser", kUserMax);
  const std::optional<std::string> password = read_text(document, "newPassword", kPasswordMax);
  const std::string old_password = document->text("oldPassword").value_or("");  // never compared
  if (!user || !platform::is_one_line(*user) || !password || old_password.size() > kPasswordMax) {
    return answer(request, answers::kUnusable);
  }
  // First what can fail: a router without room for its password keeps the one that it has, everywhere.
  if (!platform::replace_file(kPasswordFile, *password + '\n', kOwnerOnly)) {
    log_error("%s cannot be written: %m\n", kPasswordFile);
    return answer(request, answers::kUnusable);
  }
  uci::Section("rpcd", "log_on").set("username", *user);
  set_admin_password(*password);
  return answer_then(request, answers::wait(10), [] { os_system("sh /usr/sbin/refreshPasswd.sh"); });
}

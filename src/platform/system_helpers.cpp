// Shell, file and device helpers, each with the result convention that its callers know.
#include "system_helpers.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/file.h"
#include "platform/log.h"
#include "platform/process.h"
#include "platform/text.h"

namespace {

constexpr std::size_t kMacTextLength = 17;
constexpr std::size_t kLineBuffer = 256;  // longest line that the helpers look at, with its NUL
constexpr std::size_t kBeyond = 4;        // what is read behind a bound, to see whether a character ends at it

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += ' ';
    text += word;
  }
  return text;
}

// The first line of a tool's output as fgets would give it to a buffer of `size` bytes; nullopt for no output.
std::optional<std::string> first_line(const std::string& output, std::size_t size) {
  if (output.empty()) return std::nullopt;
  const std::string_view piece = platform::cut_utf8(output, size - 1);
  return std::string(piece.substr(0, piece.find('\n')));
}

// The value that os_system and os_exec answer for a command that was run, with their message.
#define SYSTEM_RESULT(result, shown)                                                         \
  if (!(result).started) {                                                                   \
    log_debug("exec syscmd error!");                                                         \
    return 0;                                                                                \
  }                                                                                          \
  if ((result).succeeded()) return 1;                                                        \
  log_debug("exec cmd '%s' errno=%d!", (shown).c_str(), ((result).wait_status >> 8) & 0xff); \
  return 0;

// The MAC address text that the kernel keeps in `path`.
int read_mac_file(const std::string& path, char* out) {
  const platform::ProcessResult result = platform::run({"cat", path}, {.max_output = kLineBuffer + kBeyond});
  if (!result.started) {
    std::perror("popen failed");
    return -1;
  }
  if (result.output.empty()) {
    std::perror("fgets failed");
    return -1;
  }
  const std::optional<std::string> line = first_line(result.output, kMacTextLength + 1);
  if (!line || line->size() != kMacTextLength) {
    std::fputs("Invalid MAC address format\n", stderr);
    return -1;
  }
  std::memcpy(out, line->c_str(), kMacTextLength + 1);
  return 0;
}

std::string option_address(const char* package, const char* section, const char* option) {
  return std::string(package) + '.' + section + '.' + option;
}

}  // namespace

int os_system(const std::string& command) {
  if (command.empty()) {
    log_debug("shell cmd is null!");
    return 0;
  }
  const platform::ProcessResult result = platform::run_shell(command, {.capture_output = false});
  SYSTEM_RESULT(result, command)
}

int os_exec(const std::vector<std::string>& argv) {
  if (argv.empty() || argv[0].empty()) {
    log_debug("shell cmd is null!");
    return 0;
  }
  const platform::ProcessResult result = platform::run(argv, {.capture_output = false});
  SYSTEM_RESULT(result, joined(argv))
}

int execute_cmd(const char* command, char* out, std::size_t out_size) {
  if (command == nullptr || *command == '\0') {
    log_error("no cammand is passed at calling execute_cmd()\n");
    return 1;
  }
  const platform::ProcessResult result = platform::run_shell(command, {.max_output = kLineBuffer + kBeyond});
  if (!result.started) {
    log_error("Fail to execute CMD\n");
    return 1;
  }
  const std::optional<std::string> read = first_line(result.output, kLineBuffer);
  if (!read || out == nullptr) return 0;
  const std::string_view line = without_line_end(*read);
  if (line.size() > out_size) {
    log_error("out put buffer is not enough  to copy result  of CMD\n");
    return 0;
  }
  std::memset(out, 0, out_size);
  std::memcpy(out, line.data(), line.size());
  return 0;
}

int get_uci_option_value(const char* package, const char* section, const char* option, char* out,
                         std::size_t /*length*/) {
  constexpr std::size_t kValueBuffer = 32;
  if (package == nullptr || section == nullptr || option == nullptr || out == nullptr) {
    log_debug("Parameter error!!!\n");
    return -1;
  }
  const std::string address = option_address(package, section, option);
  const platform::ProcessResult result = platform::run({"uci", "get", address}, {.max_output = kValueBuffer + kBeyond});
  if (!result.started) {
    log_debug("uci get faill!\n");
    return -1;
  }
  log_debug("buf = %s\n", ("uci get " + address).c_str());
  if (const std::optional<std::string> line = first_line(result.output, kValueBuffer)) {
    line->copy(out, line->size());  // without a terminator
  }
  return 0;
}

int set_uci_option_value(const char* package, const char* section, const char* option, const char* value) {
  if (package == nullptr || section == nullptr || option == nullptr || value == nullptr) {
    log_error("Parameter error!!!\n");
    return -1;
  }
  platform::run({"uci", "set", option_address(package, section, option) + '=' + value}, {.capture_output = false});
  platform::run({"uci", "commit", package}, {.capture_output = false});
  return 0;
}

int del_uci_option_value(const char* package, const char* section, const char* option) {
  if (package == nullptr || section == nullptr || option == nullptr) {
    log_error("Parameter error!!!\n");
    return -1;
  }
  platform::run({"uci", "delete", option_address(package, section, option)}, {.capture_output = false});
  platform::run({"uci", "commit", package}, {.capture_output = false});
  return 0;
}

int read_value_from_file(const char* path) {
  const platform::FilePtr file = platform::open_file(path, "r");
  if (!file) {
    log_error("Failed to open file.\n");
    return -1;
  }
  int value = 0;
  if (std::fscanf(file.get(), "%d", &value) == 1) return value;
  log_error("Failed to read from file.\n");
  return -1;
}

std::optional<std::string> read_strvalue_from_file(const char* path, std::size_t size) {
  const std::optional<std::string> content = platform::read_file(path);
  if (!content) {
    log_error("Failed to open file.\n");
    return std::nullopt;
  }
  const auto is_blank = [](char character) { return std::isspace(static_cast<unsigned char>(character)) != 0; };
  const auto begin = std::find_if_not(content->begin(), content->end(), is_blank);
  const auto end = std::find_if(begin, content->end(), is_blank);
  if (begin == end || size == 0) {
    log_error("Failed to read from file.\n");
    return std::nullopt;
  }
  return std::string(begin, end).substr(0, size - 1);
}

std::string get_link_bssid(const char* ifname) {
  const platform::ProcessResult result =
      platform::run({"iw", "dev", ifname, "link"}, {.max_output = kLineBuffer + kBeyond});
  if (!result.started) {
    std::perror("popen failed");
    return "0000000000";
  }
  constexpr std::string_view kMark = "Connected to ";
  const std::string line = first_line(result.output, kLineBuffer).value_or("");
  const std::size_t mark = line.find(kMark);
  if (mark == std::string::npos) return "";
  const std::string_view rest = std::string_view(line).substr(mark + kMark.size());
  const std::size_t blank = rest.find(' ');
  const std::size_t end = blank != std::string_view::npos ? blank : rest.find('(');
  if (end == std::string_view::npos || end < kMacTextLength) return "";
  std::string bssid(rest.substr(0, kMacTextLength));
  bssid.resize(std::min(bssid.find_first_of(" ("), bssid.size()));
  for (char& digit : bssid) digit = static_cast<char>(std::toupper(static_cast<unsigned char>(digit)));
  return bssid;
}

int get_interface_macaddr(const char* ifname, char* out) {
  return read_mac_file(std::string("/sys/class/net/") + ifname + "/address", out);
}

int get_mld_link_macaddr(const char* link, char* out, const char* mld_ifname) {
  return read_mac_file(std::string("/sys/class/net/") + mld_ifname + '/' + link + "/address_" + link, out);
}

std::size_t trim_line_end(char* text) {
  const std::size_t length = std::strlen(text);
  text[without_line_end(text).size()] = '\0';
  return length;
}

std::string_view without_line_end(std::string_view text) { return text.substr(0, text.find_first_of("\r\n")); }

// Stands for any tool of the router: keeps what it was called with, then answers as it was told to.
//
// Linked under the name of a tool (/router/bin/ifconfig), or called by a script in its place (/etc/init.d/dnsmasq). One
// run:
//   1. appends {"tool": ..., "args": [...], "stdin": ..., "time": ...} as one line to /router/calls.jsonl, the time in
//      seconds since 1970;
//   2. gives the first answer of /router/answers/<tool>.json whose arguments match;
//   3. else becomes /router/tools/<tool>, when there is one;
//   4. else gives the first such answer of <tool> in /router/unless-told.json;
//   5. else nobody said what this call does: it says so, in /router/unknown-calls too, and fails.
// <tool> is the name it was called by, or the whole path when it was called by one. "stdin" is kept for the tools that
// have a file in /router/record-stdin/, and for answers that ask for it.
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <signal.h>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>
#include <vector>

#include <json-c/json.h>

namespace {

const std::string kHome = "/router/";
constexpr int kCannotRun = 126;
constexpr int kUnknown = 127;

struct JsonFreer {
  void operator()(json_object* object) const { json_object_put(object); }
};
using JsonPtr = std::unique_ptr<json_object, JsonFreer>;

struct Call {
  std::string tool;
  std::vector<std::string> args;
  std::optional<std::string> input;
};

void write_all(int fd, std::string_view data) {
  while (!data.empty()) {
    const ssize_t written = write(fd, data.data(), data.size());
    if (written <= 0) return;
    data.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string read_all(int fd) {
  std::string data;
  std::array<char, 65536> piece;
  for (ssize_t got = 0; (got = read(fd, piece.data(), piece.size())) > 0;) {
    data.append(piece.data(), static_cast<std::size_t>(got));
  }
  return data;
}

std::optional<std::string> read_file(const std::string& path) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  std::string data = read_all(fd);
  close(fd);
  return data;
}

// The number of bytes of the valid UTF-8 sequence that begins `text`, 0 when none does.
std::size_t utf8_length(std::string_view text) {
  const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0U; };
  const unsigned lead = byte(0);
  const std::size_t length = lead < 0x80                   ? 1
                             : lead >= 0xC2 && lead < 0xE0 ? 2
                             : (lead & 0xF0U) == 0xE0      ? 3
                             : lead >= 0xF0 && lead < 0xF5 ? 4
                                                           : 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return 0;
  }
  const bool overlong = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xF0 && byte(1) < 0x90);
  const bool surrogate = (lead == 0xED && byte(1) >= 0xA0) || (lead == 0xF4 && byte(1) >= 0x90);
  return overlong || surrogate ? 0 : length;
}

// A JSON string. A byte that is not UTF-8 becomes \udcXX, as Python's "surrogateescape" reads it back.
std::string quoted(std::string_view text) {
  std::string result = "\"";
  std::array<char, 8> escape;
  while (!text.empty()) {
    const auto first = static_cast<std::uint8_t>(text.front());
    const std::size_t length = utf8_length(text);
    if (length == 0 || first < 0x20) {
      std::snprintf(escape.data(), escape.size(), "\\u%04x", length == 0 ? 0xDC00U + first : first);
      result += escape.data();
    } else {
      if (first == '"' || first == '\\') result += '\\';
      result += text.substr(0, length);
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return result += '"';
}

std::string time_now() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%lld.%03ld", static_cast<long long>(now.tv_sec), now.tv_nsec / 1000000);
  return text.data();
}

void append_line(const std::string& path, const std::string& line) {
  const int fd = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  if (fd < 0) return;
  write_all(fd, line + '\n');
  close(fd);
}

void record(const Call& call) {
  std::string line = "{\"tool\": " + quoted(call.tool) + ", \"args\": [";
  for (std::size_t i = 0; i < call.args.size(); ++i) line += (i == 0 ? "" : ", ") + quoted(call.args[i]);
  line += "]";
  if (call.input) line += ", \"stdin\": " + quoted(*call.input);
  line += ", \"time\": " + time_now() + "}";
  append_line(kHome + "calls.jsonl", line);
}

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
constexpr std::string_view kCiphertextMark = "jwe.";

// A ciphertext that everybody can read: a test tells an encrypted answer from a plain one by its mark.
std::string fake_encrypt(std::string_view plaintext) {
  std::string result{kCiphertextMark};
  unsigned bits = 0;
  unsigned held = 0;
  for (const char c : plaintext) {
    bits = (bits << 8U | static_cast<std::uint8_t>(c)) & 0xFFFFU;
    for (held += 8; held >= 6; held -= 6) result += kAlphabet[bits >> (held - 6) & 0x3FU];
  }
  if (held > 0) result += kAlphabet[bits << (6 - held) & 0x3FU];
  return result;
}

std::optional<std::string> fake_decrypt(std::string_view ciphertext) {
  if (!ciphertext.starts_with(kCiphertextMark)) return std::nullopt;
  ciphertext.remove_prefix(kCiphertextMark.size());
  while (ciphertext.ends_with('\n')) ciphertext.remove_suffix(1);
  std::string result;
  unsigned bits = 0;
  unsigned held = 0;
  for (const char c : ciphertext) {
    const std::size_t value = kAlphabet.find(c);
    if (value == std::string_view::npos) return std::nullopt;
    bits = (bits << 6U | static_cast<unsigned>(value)) & 0xFFFFU;
    held += 6;
    if (held < 8) continue;
    held -= 8;
    result += static_cast<char>(bits >> held & 0xFFU);
  }
  return held >= 6 ? std::nullopt : std::optional(result);
}

// None where there is no such file.
JsonPtr read_json(const std::string& path) {
  const auto text = read_file(path);
  return JsonPtr(text ? json_tokener_parse(text->c_str()) : nullptr);
}

// nullptr where there is none.
json_object* member(json_object* object, const char* key) {
  json_object* value = nullptr;
  return json_object_object_get_ex(object, key, &value) ? value : nullptr;
}

std::string text_of(json_object* object, const char* key) {
  json_object* value = member(object, key);
  if (value == nullptr) return {};
  return {json_object_get_string(value), static_cast<std::size_t>(json_object_get_string_len(value))};
}

bool flag_of(json_object* object, const char* key) {
  json_object* value = nullptr;
  return json_object_object_get_ex(object, key, &value) && json_object_get_boolean(value);
}

int number_of(json_object* object, const char* key) {
  json_object* value = nullptr;
  return json_object_object_get_ex(object, key, &value) ? json_object_get_int(value) : 0;
}

bool matches(json_object* rule, const std::vector<std::string>& args) {
  json_object* wanted = nullptr;
  if (!json_object_object_get_ex(rule, "args", &wanted)) return true;
  const std::size_t count = json_object_array_length(wanted);
  if (count > args.size() || (flag_of(rule, "exact") && count != args.size())) return false;
  for (std::size_t i = 0; i < count; ++i) {
    json_object* word = json_object_array_get_idx(wanted, i);
    if (args[i] !=
        std::string_view(json_object_get_string(word), static_cast<std::size_t>(json_object_get_string_len(word))))
      return false;
  }
  return true;
}

json_object* find_rule(json_object* answers, const std::vector<std::string>& args) {
  json_object* rules = nullptr;
  if (!json_object_object_get_ex(answers, "rules", &rules)) return nullptr;
  for (std::size_t i = 0; i < json_object_array_length(rules); ++i) {
    json_object* rule = json_object_array_get_idx(rules, i);
    if (matches(rule, args)) return rule;
  }
  return nullptr;
}

// How often this rule answered before; counted in a file, as every answer is a process of its own.
std::size_t count_use(const std::string& name) {
  const int fd = open((kHome + "uses/" + name).c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  if (fd < 0) return 0;
  flock(fd, LOCK_EX);
  struct stat status {};
  fstat(fd, &status);
  write_all(fd, ".");
  close(fd);
  return static_cast<std::size_t>(status.st_size);
}

json_object* next_answer(json_object* rule) {
  json_object* answers = nullptr;
  if (!json_object_object_get_ex(rule, "answers", &answers)) return nullptr;
  const std::size_t count = json_object_array_length(answers);
  if (count == 0) return nullptr;
  const std::size_t used = count > 1 ? count_use(text_of(rule, "id")) : 0;
  return json_object_array_get_idx(answers, used < count ? used : count - 1);
}

void write_files(json_object* answer) {
  json_object* files = nullptr;
  if (!json_object_object_get_ex(answer, "write", &files)) return;
  json_object_object_foreach(files, path, content) {
    const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) continue;
    write_all(fd, {json_object_get_string(content), static_cast<std::size_t>(json_object_get_string_len(content))});
    close(fd);
  }
}

int answer_fake_jose(const std::string& way, const Call& call) {
  const std::string input = call.input.value_or("");
  const std::optional<std::string> output = way == "encrypt" ? fake_encrypt(input) : fake_decrypt(input);
  if (!output) return 1;
  write_all(STDOUT_FILENO, *output);
  return 0;
}

// Says that it hangs, under the number of its process group: the tests' clock need not wait for it.
[[noreturn]] void hang() {
  const std::string mark = kHome + "hanging/" + std::to_string(getpgrp());
  close(open(mark.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
  while (true) pause();
}

int give(json_object* answer, const Call& call) {
  write_files(answer);
  const std::string jose = text_of(answer, "jose");
  if (!jose.empty()) return answer_fake_jose(jose, call);
  write_all(STDOUT_FILENO, text_of(answer, "out"));
  write_all(STDERR_FILENO, text_of(answer, "err"));
  if (flag_of(answer, "hang")) hang();
  if (const int number = number_of(answer, "signal"); number > 0) raise(number);
  return number_of(answer, "exit");
}

// The tool reads what was read for the record once more.
void give_back_input(const std::string& input) {
  const int fd = memfd_create("stdin", 0);
  if (fd < 0) return;
  write_all(fd, input);
  lseek(fd, 0, SEEK_SET);
  dup2(fd, STDIN_FILENO);
  close(fd);
}

int become_tool(const std::string& path, const Call& call, char** argv) {
  if (call.input) give_back_input(*call.input);
  execv(path.c_str(), argv);
  std::perror(path.c_str());
  return kCannotRun;
}

int fail_as_unknown(const Call& call) {
  std::string words = call.tool;
  for (const std::string& word : call.args) words += ' ' + word;
  std::fprintf(stderr, "stand-in: nobody said what this call does: %s\n", words.c_str());
  append_line(kHome + "unknown-calls", quoted(words));
  return kUnknown;
}

// A path is a script that says for whom the stand-in was called; a name is a link to it.
std::string tool_name(std::string_view called_as) {
  if (const char* path = getenv("STAND_IN_FOR"); path != nullptr) {
    std::string name = path;
    unsetenv("STAND_IN_FOR");
    return name;
  }
  const std::string own = kHome + "bin/";
  if (called_as.starts_with(own)) called_as.remove_prefix(own.size());
  return std::string(called_as);
}

}  // namespace

int main(int argc, char** argv) {
  Call call{tool_name(argc > 0 ? argv[0] : "?"), {}, {}};
  for (int i = 1; i < argc; ++i) call.args.emplace_back(argv[i]);

  const JsonPtr answers = read_json(kHome + "answers/" + call.tool + ".json");
  json_object* rule = find_rule(answers.get(), call.args);
  const bool wants_input = access((kHome + "record-stdin/" + call.tool).c_str(), F_OK) == 0;
  if (wants_input || (rule != nullptr && flag_of(rule, "stdin"))) call.input = read_all(STDIN_FILENO);
  record(call);

  json_object* answer = rule == nullptr ? nullptr : next_answer(rule);
  if (answer != nullptr) return give(answer, call);
  const std::string tool = kHome + "tools/" + call.tool;
  if (access(tool.c_str(), F_OK) == 0) return become_tool(tool, call, argv);
  const JsonPtr unless_told = read_json(kHome + "unless-told.json");
  rule = find_rule(member(unless_told.get(), call.tool.c_str()), call.args);
  return rule == nullptr ? fail_as_unknown(call) : give(next_answer(rule), call);
}

// uci batch: a command a line.
#include <string>
#include <strings.h>
#include <vector>

#include "session.h"

namespace {

constexpr std::size_t kMostWords = 3;

// The words of the next line; none for an empty line. False when the line cannot be read (an unterminated quote).
bool read_words(Session& session, std::vector<std::string>& words) {
  words.clear();
  char* position = nullptr;
  char* word = nullptr;
  do {
    if (uci_parse_argument(session.context.get(), session.input, &position, &word) != UCI_OK) return false;
    if (*word != '\0') words.emplace_back(word);
  } while (*word != '\0');
  return true;
}

void unload_all(uci_context* context) {
  while (!uci_list_empty(&context->root)) uci_unload(context, uci_to_package(list_to_element(context->root.next)));
}

void run_line(Session& session, std::vector<std::string>& words) {
  if (words.size() > kMostWords) {
    if (!session.quiet) std::fprintf(stderr, "Too many arguments\n");
    return;
  }
  std::vector<char*> pointers;
  pointers.reserve(words.size());
  for (std::string& word : words) pointers.push_back(word.data());
  const int status = run_command(session, pointers);
  if (status == kExitUsage && !session.quiet) std::fprintf(stderr, "Unknown command\n");
}

}  // namespace

int run_batch(Session& session) {
  session.in_batch = true;
  std::vector<std::string> words;
  while (std::feof(session.input) == 0) {
    if (!read_words(session, words)) {
      session.print_error();
      break;
    }
    if (words.empty()) continue;
    if (strcasecmp(words[0].c_str(), "exit") == 0) break;
    run_line(session, words);
    unload_all(session.context.get());
  }
  return 0;
}

// What `uci` does by command lines, done with the C interface in one process, for differential.py: reads the commands
// of a case (words end in \x1f or \x1e, commands in \x1e) and prints {"succeeded": ...} for each.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <uci.h>

namespace {

struct FreeContext {
  void operator()(uci_context* context) const noexcept { uci_free_context(context); }
};
using ContextPtr = std::unique_ptr<uci_context, FreeContext>;

using Words = std::vector<std::string>;

std::vector<Words> read_commands() {
  const std::string text{std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
  std::vector<Words> commands;
  Words words;
  std::string word;
  for (const char character : text) {
    if (character != '\x1e' && character != '\x1f') {
      word += character;
      continue;
    }
    words.push_back(std::exchange(word, ""));
    if (character == '\x1e') commands.push_back(std::exchange(words, Words{}));
  }
  return commands;
}

struct Edit {
  std::string_view name;
  int (*function)(uci_context* context, uci_ptr* ptr);
};
constexpr std::array<Edit, 5> kEdits{{{"set", uci_set},
                                      {"add_list", uci_add_list},
                                      {"del_list", uci_del_list},
                                      {"delete", uci_delete},
                                      {"rename", uci_rename}}};

bool save(uci_context* context, uci_package* package) { return uci_save(context, package) == UCI_OK; }

// The pointer is filled in from a split tuple, not looked up first: the editing functions do that themselves.
bool edit(uci_context* context, std::string tuple, int (*function)(uci_context*, uci_ptr*)) {
  uci_ptr ptr{};
  if (uci_parse_ptr(context, &ptr, tuple.data()) != UCI_OK) return false;
  return function(context, &ptr) == UCI_OK && save(context, ptr.p);
}

bool reorder(uci_context* context, std::string tuple) {
  uci_ptr ptr{};
  if (uci_lookup_ptr(context, &ptr, tuple.data(), true) != UCI_OK || ptr.s == nullptr || ptr.value == nullptr)
    return false;
  return uci_reorder_section(context, ptr.s, std::atoi(ptr.value)) == UCI_OK && save(context, ptr.p);
}

bool add(uci_context* context, const std::string& name, const std::string& type) {
  uci_package* package = nullptr;
  uci_section* section = nullptr;
  return uci_load(context, name.c_str(), &package) == UCI_OK &&
         uci_add_section(context, package, type.c_str(), &section) == UCI_OK && save(context, package);
}

bool look_up(uci_context* context, std::string tuple, bool whole) {
  uci_ptr ptr{};
  if (uci_lookup_ptr(context, &ptr, tuple.data(), true) != UCI_OK) return false;
  return whole || (ptr.flags & uci_ptr::UCI_LOOKUP_COMPLETE) != 0;
}

// The command tells no failure of a revert but that of its lookup.
bool revert(uci_context* context, std::string tuple) {
  uci_ptr ptr{};
  if (uci_lookup_ptr(context, &ptr, tuple.data(), true) != UCI_OK) return false;
  uci_revert(context, &ptr);
  return true;
}

bool commit(uci_context* context, const std::string& name) {
  uci_package* package = nullptr;
  return uci_load(context, name.c_str(), &package) == UCI_OK && uci_commit(context, &package, false) == UCI_OK;
}

bool run(uci_context* context, const Words& words) {
  for (const Edit& known : kEdits) {
    if (words[0] == known.name) return edit(context, words[1], known.function);
  }
  if (words[0] == "reorder") return reorder(context, words[1]);
  if (words[0] == "add") return add(context, words[1], words[2]);
  if (words[0] == "revert") return revert(context, words[1]);
  if (words[0] == "commit") return commit(context, words[1]);
  return look_up(context, words[1], words[0] != "get" && words[0] != "show");
}

void unload_all(uci_context* context) {
  while (!uci_list_empty(&context->root)) uci_unload(context, uci_to_package(list_to_element(context->root.next)));
}

}  // namespace

int main(int argc, char** argv) {
  const ContextPtr context(uci_alloc_context());
  if (argc != 3 || !context) return 2;
  uci_set_confdir(context.get(), argv[1]);
  uci_set_savedir(context.get(), argv[2]);
  uci_set_conf2dir(context.get(), "");
  for (const Words& words : read_commands()) {
    std::printf("{\"succeeded\": %s}\n", run(context.get(), words) ? "true" : "false");
    unload_all(context.get());
  }
  return 0;
}

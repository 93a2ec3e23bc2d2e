// The commands of `uci`.
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <strings.h>
#include <vector>

#include "session.h"

namespace {

int fail(const Session& session) {
  session.print_error();
  return kExitFailure;
}

int fail_with(const Session& session, int code) {
  session.context->err = code;
  return fail(session);
}

// Looks up what the argument names; it stays cut up behind that.
bool look_up(Session& session, uci_ptr& ptr, char* argument) {
  return uci_lookup_ptr(session.context.get(), &ptr, argument, true) == UCI_OK;
}

bool is_complete(const uci_ptr& ptr) { return (ptr.flags & uci_ptr::UCI_LOOKUP_COMPLETE) != 0; }

// Stages what an editing function did.
int finish_edit(Session& session, int code, const uci_ptr& ptr) {
  if (code == UCI_OK) code = uci_save(session.context.get(), ptr.p);
  if (code == UCI_OK) return 0;
  // A list item that was named by no number: no message.
  return session.context->err == UCI_OK ? kExitFailure : fail(session);
}

// Commands that do what they can end with success, unless what they did not do is lost on a disk that takes no more.
bool is_io_failure(const Session& session) { return session.context->err == UCI_ERR_IO; }

int edit(Session& session, char* argument, int (*function)(uci_context*, uci_ptr*)) {
  uci_ptr ptr{};
  if (!look_up(session, ptr, argument)) return fail(session);
  return finish_edit(session, function(session.context.get(), &ptr), ptr);
}

int set_command(Session& session, std::span<char*> words) { return edit(session, words[1], uci_set); }
int add_list_command(Session& session, std::span<char*> words) { return edit(session, words[1], uci_add_list); }
int del_list_command(Session& session, std::span<char*> words) { return edit(session, words[1], uci_del_list); }
int delete_command(Session& session, std::span<char*> words) { return edit(session, words[1], uci_delete); }
int rename_command(Session& session, std::span<char*> words) { return edit(session, words[1], uci_rename); }

int reorder_command(Session& session, std::span<char*> words) {
  uci_ptr ptr{};
  if (!look_up(session, ptr, words[1])) return fail(session);
  if (ptr.s == nullptr || ptr.value == nullptr) return fail_with(session, UCI_ERR_NOTFOUND);
  const int position = static_cast<int>(std::strtoul(ptr.value, nullptr, 10));
  return finish_edit(session, uci_reorder_section(session.context.get(), ptr.s, position), ptr);
}

int get_command(Session& session, std::span<char*> words) {
  uci_ptr ptr{};
  if (!look_up(session, ptr, words[1])) return fail(session);
  if (ptr.value != nullptr) return kExitFailure;
  if (!is_complete(ptr)) return fail_with(session, UCI_ERR_NOTFOUND);
  if (ptr.o != nullptr) {
    print_value(session, *ptr.o);
  } else if (ptr.s != nullptr) {
    std::printf("%s\n", ptr.s->type);
  }
  return 0;
}

int add_command(Session& session, std::span<char*> words) {
  uci_package* package = nullptr;
  uci_section* section = nullptr;
  uci_context* context = session.context.get();
  int code = uci_load(context, words[1], &package);
  if (code == UCI_OK) code = uci_add_section(context, package, words[2], &section);
  const std::string name = code == UCI_OK ? section->e.name : "";
  if (code == UCI_OK) code = uci_save(context, package);
  if (code != UCI_OK) {
    session.print_error();
    return code;
  }
  std::printf("%s\n", name.c_str());
  return 0;
}

int revert_command(Session& session, std::span<char*> words) {
  uci_ptr ptr{};
  if (!look_up(session, ptr, words[1])) return fail(session);
  if (ptr.value != nullptr) return kExitFailure;
  if (uci_revert(session.context.get(), &ptr) == UCI_OK) return 0;
  session.print_error();
  return is_io_failure(session) ? kExitFailure : 0;
}

int show_tuple(Session& session, char* argument) {
  uci_ptr ptr{};
  if (!look_up(session, ptr, argument)) return fail(session);
  if (!is_complete(ptr)) return fail_with(session, UCI_ERR_NOTFOUND);
  if (ptr.o != nullptr) {
    show_option(session, ptr.p->e.name, ptr.s->e.name, *ptr.o);
  } else if (ptr.s != nullptr) {
    show_section(session, ptr.p->e.name, *ptr.s, ptr.s->e.name);
  } else {
    show_package(session, *ptr.p);
  }
  return 0;
}

int commit_package(Session& session, uci_package* package) {
  if (session.no_commit) return UCI_OK;
  return uci_commit(session.context.get(), &package, false);
}

// A command on whole packages: the named one, or all, of which each may fail by itself.
using PackageAction = int (*)(Session& session, uci_package* package);

int run_on_named(Session& session, char* argument, PackageAction action) {
  uci_ptr ptr{};
  if (!look_up(session, ptr, argument)) return fail(session);
  return action(session, ptr.p) == UCI_OK ? 0 : fail(session);
}

int run_on_all(Session& session, PackageAction action) {
  char** names = nullptr;
  if (uci_list_configs(session.context.get(), &names) != UCI_OK) return fail(session);
  const std::unique_ptr<char*, decltype(&std::free)> owner(names, std::free);
  int status = 0;
  for (char** name = names; *name != nullptr; ++name) {
    uci_package* package = uci_lookup_package(session.context.get(), *name);
    const bool loaded = package != nullptr || uci_load(session.context.get(), *name, &package) == UCI_OK;
    if (!loaded || action(session, package) != UCI_OK) {
      if (is_io_failure(session)) status = kExitFailure;
      session.print_error();
      continue;
    }
    if (uci_package* standing = uci_lookup_package(session.context.get(), *name)) {
      uci_unload(session.context.get(), standing);
    }
  }
  return status;
}

int run_on_packages(Session& session, std::span<char*> words, PackageAction action) {
  return words.size() > 1 ? run_on_named(session, words[1], action) : run_on_all(session, action);
}

int show_command(Session& session, std::span<char*> words) {
  if (words.size() > 1) return show_tuple(session, words[1]);
  return run_on_all(session, [](Session& s, uci_package* package) {
    show_package(s, *package);
    return int{UCI_OK};
  });
}

int changes_command(Session& session, std::span<char*> words) {
  return run_on_packages(session, words, [](Session&, uci_package* package) {
    show_changes(*package);
    return int{UCI_OK};
  });
}

int commit_command(Session& session, std::span<char*> words) { return run_on_packages(session, words, commit_package); }

int export_command(Session& session, std::span<char*> words) {
  return run_on_packages(session, words, [](Session& s, uci_package* package) {
    return uci_export(s.context.get(), stdout, package, true);
  });
}

int merge_import(Session& session, uci_package* package) {
  uci_context* context = session.context.get();
  const bool done = uci_import(context, session.input, package->e.name, &package, true) == UCI_OK &&
                    uci_save(context, package) == UCI_OK;
  return done ? 0 : fail(session);
}

int import_command(Session& session, std::span<char*> words) {
  const char* name = words.size() > 1 ? words[1] : nullptr;
  if (session.merge && name == nullptr) return kExitUsage;
  uci_context* context = session.context.get();
  uci_package* package = nullptr;
  if (session.merge && uci_load(context, name, &package) == UCI_OK) return merge_import(session, package);
  if (session.merge && context->err != UCI_ERR_NOTFOUND) return fail(session);
  if (uci_import(context, session.input, name, &package, name != nullptr) != UCI_OK) return fail(session);
  std::vector<uci_package*> imported;
  uci_element* element = nullptr;
  uci_foreach_element(&context->root, element) imported.push_back(uci_to_package(element));
  for (uci_package* each : imported) {
    if (uci_commit(context, &each, true) != UCI_OK) return fail(session);
  }
  return 0;
}

int batch_command(Session& session, std::span<char*>) { return session.in_batch ? kExitUsage : run_batch(session); }

int help_command(Session& session, std::span<char*>) {
  print_usage(session.program);
  return 0;
}

struct Command {
  const char* name;
  std::size_t least_arguments;
  std::size_t most_arguments;
  int (*run)(Session& session, std::span<char*> words);
};

constexpr std::array<Command, 18> kCommands{{
    {"get", 1, 1, get_command},
    {"show", 0, 1, show_command},
    {"set", 1, 1, set_command},
    {"add_list", 1, 1, add_list_command},
    {"del_list", 1, 1, del_list_command},
    {"delete", 1, 1, delete_command},
    {"del", 1, 1, delete_command},
    {"rename", 1, 1, rename_command},
    {"ren", 1, 1, rename_command},
    {"reorder", 1, 1, reorder_command},
    {"add", 2, 2, add_command},
    {"revert", 1, 1, revert_command},
    {"changes", 0, 1, changes_command},
    {"commit", 0, 1, commit_command},
    {"export", 0, 1, export_command},
    {"import", 0, 1, import_command},
    {"batch", 0, 0, batch_command},
    {"help", 0, 0, help_command},
}};

}  // namespace

void Session::print_error() const {
  if (!quiet) uci_perror(context.get(), program);
}

int run_command(Session& session, std::span<char*> words) {
  for (const Command& command : kCommands) {
    if (strcasecmp(words[0], command.name) != 0) continue;
    const std::size_t arguments = words.size() - 1;
    if (arguments < command.least_arguments || arguments > command.most_arguments) return kExitUsage;
    return command.run(session, words);
  }
  return kExitUsage;
}

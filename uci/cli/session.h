// One run of the `uci` command: its options and its context.
#pragma once

#include <cstdio>
#include <memory>
#include <span>
#include <string>

#include <uci.h>

struct FreeContext {
  void operator()(uci_context* context) const noexcept { uci_free_context(context); }
};
using ContextPtr = std::unique_ptr<uci_context, FreeContext>;

struct Session {
  ContextPtr context{uci_alloc_context()};
  const char* program = "uci";   // what messages begin with
  std::FILE* input = stdin;      // of import and batch
  std::string separator = " ";   // between the items of a list
  bool merge = false;            // -m
  bool quiet = false;            // -q
  bool generated_names = false;  // -X
  bool no_commit = false;        // -P
  bool in_batch = false;

  // The text of the context's last error, unless -q forbids it.
  void print_error() const;
};

inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 255;

void print_usage(const char* program);

// Runs one command. `words` are the command and its arguments. Its exit status; kExitUsage without a message for an
// unknown command or a wrong number of arguments.
int run_command(Session& session, std::span<char*> words);

int run_batch(Session& session);

// uci show: one package, section or option, or everything. False (with its message printed) on failure.
void show_package(const Session& session, uci_package& package);
void show_section(const Session& session, const char* package, uci_section& section, const char* name);
void show_option(const Session& session, const char* package, const char* section, uci_option& option);
// uci get: the value alone.
void print_value(const Session& session, uci_option& option);
void show_changes(uci_package& package);

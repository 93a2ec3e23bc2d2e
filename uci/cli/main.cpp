// The `uci` command: reads its options and runs one command.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <getopt.h>
#include <string>
#include <vector>

#include "session.h"

namespace {

enum class Parsed { kRun, kUsage, kFailed };

void set_flag(Session& session, uci_flags flag, bool on) {
  const int flags = session.context->flags;
  session.context->flags = static_cast<uci_flags>(on ? flags | flag : flags & ~flag);
}

bool open_input(Session& session, const char* path) {
  if (session.input != stdin) {
    std::fprintf(stderr, "Too many input files.\n");
    return false;
  }
  session.input = std::fopen(path, "re");
  if (session.input == nullptr) std::fprintf(stderr, "uci: %s", std::strerror(errno));
  return session.input != nullptr;
}

Parsed parse_option(Session& session, int option) {
  uci_context* context = session.context.get();
  switch (option) {
    case 'c':
      uci_set_confdir(context, optarg);
      break;
    case 'C':
      uci_set_conf2dir(context, optarg);
      break;
    case 'd':
      session.separator = optarg;
      break;
    case 'f':
      return open_input(session, optarg) ? Parsed::kRun : Parsed::kFailed;
    case 'm':
      session.merge = true;
      break;
    case 'n':
      set_flag(session, UCI_FLAG_EXPORT_NAME, true);
      break;
    case 'N':
      set_flag(session, UCI_FLAG_EXPORT_NAME, false);
      break;
    case 'p':
      uci_add_delta_path(context, optarg);
      break;
    case 'P':
      session.no_commit = true;
      [[fallthrough]];
    case 't':
      uci_set_savedir(context, optarg);
      break;
    case 'q':
      session.quiet = true;
      break;
    case 's':
      set_flag(session, UCI_FLAG_STRICT, true);
      break;
    case 'S':
      set_flag(session, UCI_FLAG_STRICT, false);
      set_flag(session, UCI_FLAG_PERROR, true);
      break;
    case 'X':
      session.generated_names = true;
      break;
    default:
      return Parsed::kUsage;
  }
  return Parsed::kRun;
}

// Options may stand behind the command's words, whatever the C library's getopt() thinks of that by itself.
Parsed parse_options(Session& session, int argc, char** argv, std::vector<char*>& words) {
  constexpr int kWord = 1;  // what the leading "-" makes of them
  constexpr const char* kOptions = "-c:C:d:f:LmnNp:P:qsSt:X";
  for (int option = getopt(argc, argv, kOptions); option != -1; option = getopt(argc, argv, kOptions)) {
    if (option == kWord) {
      words.push_back(optarg);
      continue;
    }
    const Parsed parsed = parse_option(session, option);
    if (parsed != Parsed::kRun) return parsed;
  }
  words.insert(words.end(), argv + optind, argv + argc);  // behind "--"
  return words.empty() ? Parsed::kUsage : Parsed::kRun;
}

// False, with its message, when what was printed did not arrive.
bool finish_output(Session& session) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return true;
  session.context->err = UCI_ERR_IO;
  session.print_error();
  return false;
}

int run(int argc, char** argv) {
  // Not taken apart at the end: element by element that would be a tenth of a run, and the process is the memory's end.
  static Session& session = *new Session;
  if (!session.context) {
    std::fprintf(stderr, "Out of memory\n");
    return kExitFailure;
  }
  session.program = argv[0];
  std::vector<char*> words;
  const Parsed parsed = parse_options(session, argc, argv, words);
  if (parsed == Parsed::kFailed) return kExitFailure;
  if (parsed == Parsed::kUsage) {
    print_usage(session.program);
    return 0;
  }
  const int status = run_command(session, words);
  if (status == kExitUsage) print_usage(session.program);
  if (session.input != stdin) std::fclose(session.input);
  return finish_output(session) ? status : kExitFailure;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "uci: %s\n", error.what());
    return kExitFailure;
  }
}

// What `router-api --version` and `--help` print.
#include "command_line.h"

#include <cstdio>
#include <string_view>

namespace {

constexpr int kExitUsage = 2;

constexpr const char* kUsage =
    "router-api [--help | --version]\n"
    "\n"
    "The JSON REST back-end of a router: a FastCGI responder that a web server starts, or that a\n"
    "spawner starts for it, with the listening socket as descriptor 0. It takes no other option\n"
    "and reads no configuration file. It is to run as root.\n"
    "\n"
    "  --help     print this and exit\n"
    "  --version  print the version and exit\n"
    "\n"
    "router-api(8) tells of files, environment, signals and exit statuses.\n";

}  // namespace

std::optional<int> handle_command_line(int argc, char** argv) {
  if (argc < 2) return std::nullopt;
  const std::string_view option = argv[1];
  if (argc == 2 && option == "--version") {
    std::puts("router-api " ROUTER_API_VERSION);
    return 0;
  }
  if (argc == 2 && option == "--help") {
    std::fputs(kUsage, stdout);
    return 0;
  }
  std::fprintf(stderr, "router-api: '%s' is not an option\n%s", argv[argc - 1], kUsage);
  return kExitUsage;
}

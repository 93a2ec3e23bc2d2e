// The program's options: a web server passes none, a person asks what this is.
#pragma once

#include <optional>

// Handles the command line of main(). The exit status (0; 2 for an option that does not exist) when there was
// anything on it: the answer is then printed and nothing is served. Nothing when the program is to serve.
std::optional<int> handle_command_line(int argc, char** argv);

// How long a command may take before its process group is ended: far above its honest longest.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

// Seconds for a shell text of constants and our own numbers: the limit of its kind, and the sleeps that it is given.
unsigned int limit_of_shell(std::string_view command);
// Seconds for an argv. Only the program and its first word tell the kind: what follows may come from outside.
unsigned int limit_of_argv(const std::vector<std::string>& argv);

}  // namespace platform

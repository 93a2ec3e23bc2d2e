// Texts of UCI packages for unit tests.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "uci_access.h"

namespace package_text {

using Options = std::vector<std::pair<std::string, std::string>>;

inline std::string section(const std::string& type, const std::string& name, const Options& options) {
  std::string text = "config " + type + " '" + name + "'\n";
  for (const auto& [option, value] : options) text += "\toption " + option + " '" + value + "'\n";
  return text + "\n";
}

// An option as it stands in UCI, or "-".
inline std::string stored(const char* package, const char* name, const char* option) {
  return uci_read_or(package, name, option, 256, "-");
}

}  // namespace package_text

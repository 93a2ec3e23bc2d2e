// The waits of the code under test: kept, not waited. A folder that includes this has them wrapped in its link.cmake:
// the option --wrap=_ZN8platform13sleep_secondsEj.
#pragma once

#include <utility>
#include <vector>

namespace waits {

inline std::vector<unsigned int>& kept() {
  static std::vector<unsigned int> seconds;
  return seconds;
}

// The seconds of each wait since the last look.
inline std::vector<unsigned int> taken() { return std::exchange(kept(), {}); }

}  // namespace waits

// Weak: each source of a program that includes this has one. In place of platform::sleep_seconds.
extern "C" {
// NOLINTNEXTLINE(bugprone-reserved-identifier)
[[gnu::weak]] void __wrap__ZN8platform13sleep_secondsEj(unsigned int seconds) { waits::kept().push_back(seconds); }
}

// In every unit-test program: refuses to run on the machine itself, whose /etc/config and /tmp it would write.
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

// The root that tests/kit/in-sandbox makes has a folder of this name.
constexpr const char* kMark = "/router";

[[maybe_unused]] const bool is_in_sandbox = [] {
  if (access(kMark, F_OK) == 0) return true;
  std::fputs("This program writes /etc/config and the like. Run it by tests/kit/in-sandbox PROGRAM, or by ctest.\n",
             stderr);
  std::_Exit(125);
}();

}  // namespace

// Readers of the mesh settings.
#include "unit/mesh.h"

#include <cstdlib>
#include <optional>
#include <string>

#include "platform/log.h"
#include "uci_access.h"

namespace {

constexpr std::size_t kNumberSize = 4;
constexpr std::size_t kRoleSize = 16;

// An option as a number; 1, with `out` untouched, when it cannot be read.
int read_number(const char* package, const char* section, const char* option, int& out) {
  const std::optional<std::string> text = uci_read(package, section, option, kNumberSize);
  if (!text) return 1;
  out = std::atoi(text->c_str());
  return 0;
}

}  // namespace

int get_mesh_value(int& out) {
  int enable = 0;
  if (read_number("button_mesh", "easymesh", "enable", enable) != 0) return 1;
  out = enable == 1 ? 1 : 0;
  return 0;
}

int get_mesh_mode_value(int& out) { return read_number("button_mesh", "easymesh", "mode", out); }

int get_agent_onboarding_status(int& out) { return read_number("repacd", "MAPConfig", "OnboardingDone", out); }

int get_mesh_role_value(int& out) {
  const std::optional<std::string> enable = uci_read("button_mesh", "easymesh", "enable", kNumberSize);
  const std::optional<std::string> role =
      enable ? uci_read("button_mesh", "easymesh", "role", kRoleSize) : std::nullopt;
  if (!role) {
    log_error("Failed to get meshRole option");
    return 1;
  }
  if (*enable != "1") return 0;
  if (role->starts_with("controller")) out = kMeshRoleController;
  if (role->starts_with("agent")) out = kMeshRoleAgent;
  return 0;
}

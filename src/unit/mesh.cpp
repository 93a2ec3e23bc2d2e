// Readers of the mesh settings.
#include "unit/mesh.h"

#include <cstdlib>
#include <optional>
#include <string>

#include "platform/log.h"

namespace {

constexpr std::size_t kNumberSize = 4;
constexpr std::size_t kRoleSize = 16;

// An option as a number; false, with `out` untouched, when it cannot be read.
bool read_number(const uci::Section& section, const char* option, int& out) {
  const std::optional<int> number = section.read_number(option, kNumberSize);
  out = number.value_or(out);
  return number.has_value();
}

}  // namespace

int get_mesh_value(int& out) {
  int enable = 0;
  if (!read_number(unit::easymesh(), "enable", enable)) return 1;
  out = enable == 1 ? 1 : 0;
  return 0;
}

int get_mesh_mode_value(int& out) { return read_number(unit::easymesh(), "mode", out) ? 0 : 1; }

int get_agent_onboarding_status(int& out) {
  return read_number({"repacd", "MAPConfig"}, "OnboardingDone", out) ? 0 : 1;
}

int get_mesh_role_value(int& out) {
  const std::optional<std::string> enable = unit::easymesh().read("enable", kNumberSize);
  const std::optional<std::string> role = enable ? unit::easymesh().read("role", kRoleSize) : std::nullopt;
  if (!role) {
    log_error("Failed to get meshRole option");
    return 1;
  }
  if (*enable != "1") return 0;
  if (role->starts_with("controller")) out = kMeshRoleController;
  if (role->starts_with("agent")) out = kMeshRoleAgent;
  return 0;
}

namespace unit {

bool is_agent_by_whole_role() {
  return easymesh().read_number("enable", kNumberSize) == 1 && easymesh().read_or("role", kRoleSize, "") == "agent";
}

bool is_agent_by_role_prefix() {
  const bool is_on = easymesh().read_number("enable", kNumberSize) == 1;
  return easymesh().read_or("role", kRoleSize, "").starts_with("agent") && is_on;
}

MeshPart read_mesh_part() {
  const bool is_on = easymesh().read_number("enable", kNumberSize).value_or(0) != 0;
  return {is_on, easymesh().read_or("role", kRoleSize, "")};
}

}  // namespace unit

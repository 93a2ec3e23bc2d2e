// The router's files as a unit test wants them; the test runs in an empty root of its own.
#pragma once

#include <filesystem>
#include <string>

#include "platform/file.h"

namespace router_state {

inline void write(const std::string& path, const std::string& text) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  platform::write_file(path.c_str(), text);
}

inline void config(const std::string& package, const std::string& text) { write("/etc/config/" + package, text); }

inline void no_config(const std::string& package) { std::filesystem::remove("/etc/config/" + package); }

// Brand index 0, 1 or 2.
inline void brand(int index) {
  constexpr const char* kDeviceIds[] = {"0221\n", "0121\n", "0999\n"};
  write("/tmp/deviceid", kDeviceIds[index]);
}

// Mesh role 0, 1, 2, mesh mode and OnboardingDone.
inline void mesh(int role, int mode, int onboarded) {
  constexpr const char* kRoles[] = {"none", "controller", "agent"};
  config("button_mesh", std::string("config easymesh 'easymesh'\n\toption enable '") + (role == 0 ? "0" : "1") +
                            "'\n\toption role '" + kRoles[role] + "'\n\toption mode '" + std::to_string(mode) + "'\n");
  config("repacd", "config MAPConfig 'MAPConfig'\n\toption OnboardingDone '" + std::to_string(onboarded) + "'\n");
}

}  // namespace router_state

// The backhaul of a mesh agent, as hostapd runs it.
#include <optional>
#include <string>

#include "platform/file.h"
#include "platform/log.h"
#include "platform/process.h"
#include "platform/text.h"
#include "system_helpers.h"
#include "unit/brand.h"
#include "unit/mesh.h"
#include "wireless.h"
#include "wireless/setting/ssid_info.h"

namespace {

constexpr std::size_t kLineSize = 256;

const char* backhaul_file(const brands::Brand& brand, int mesh_mode) {
  const auto mode = static_cast<std::size_t>(mesh_mode);
  return mode < brand.backhaul_files.size() ? brand.backhaul_files[mode] : brand.backhaul_files.back();
}

struct Backhaul {
  std::optional<std::string> ssid;
  std::optional<std::string> passphrase;
};

// What the last of several lines says.
Backhaul parse_backhaul(std::string_view text) {
  constexpr std::string_view kPassphrase = "wpa_passphrase=";
  constexpr std::string_view kSsid = "ssid=";
  Backhaul found;
  for (const std::string& line : platform::split_lines(text, kLineSize)) {
    const std::string_view value = without_line_end(line);
    if (value.starts_with(kPassphrase)) {
      found.passphrase = platform::cut_utf8(value.substr(kPassphrase.size()), kPasswordMax);
    } else if (value.starts_with(kSsid)) {
      found.ssid = platform::cut_utf8(value.substr(kSsid.size()), kSsidMax);
    }
  }
  return found;
}

}  // namespace

int get_agent_backhul_info(std::string& ssid, std::string& passphrase) {
  int mode = 0;
  if (get_mesh_mode_value(mode) != 0) {
    log_error("Failed to get mesh_mode");
    return 1;
  }
  const char* path = backhaul_file(unit::brand(), mode);
  const std::optional<std::string> text = platform::read_file(path);
  if (!text) {
    log_error("Failed to open backhaul info file %s", path);
    return 1;
  }
  const Backhaul found = parse_backhaul(*text);
  if (!found.ssid || !found.passphrase) {
    log_error("Failed to find ssid or wpa_passphrase in the file");
    return 1;
  }
  ssid = *found.ssid;
  passphrase = *found.passphrase;
  return 0;
}

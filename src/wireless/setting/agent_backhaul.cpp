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
  constexpr std::string_view kPassphrase = "wpa_passphrase=";
  constexpr std::string_view kSsid = "ssid=";
  std::optional<std::string> found_ssid;
  std::optional<std::string> found_passphrase;
  for (const std::string& line : platform::split_lines(*text, kLineSize)) {
    const std::string value(without_line_end(line));
    if (value.starts_with(kPassphrase)) {
      found_passphrase = platform::cut_utf8(std::string_view(value).substr(kPassphrase.size()), kPasswordMax);
    } else if (value.starts_with(kSsid)) {
      found_ssid = platform::cut_utf8(std::string_view(value).substr(kSsid.size()), kSsidMax);
    }
  }
  if (!found_ssid || !found_passphrase) {
    log_error("Failed to find ssid or wpa_passphrase in the file");
    return 1;
  }
  ssid = *found_ssid;
  passphrase = *found_passphrase;
  return 0;
}

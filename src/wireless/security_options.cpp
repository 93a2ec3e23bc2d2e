// Reading and writing of the options behind a wifiSecurity code.
#include "wireless/security_options.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "interface_plan.h"
#include "platform/log.h"
#include "uci_access.h"
#include "unit/mesh.h"

namespace security {

void write(const Writing& writing, const char* package, const char* section, const char* key) {
  for (const Option& option : writing.sets) UciSetOption(nullptr, package, section, option.name, option.value);
  if (writing.has_key) UciSetOption(nullptr, package, section, "key", key);
  for (const char* option : writing.deletes) UciDelOption(nullptr, package, section, option);
}

}  // namespace security

namespace {

constexpr std::size_t kFlagSize = 8;
constexpr std::size_t kEncryptionSize = 32;

bool is_mesh_enabled() {
  int mesh = 0;
  return get_mesh_value(mesh) == 0 && mesh == 1;
}

bool holds(security::Condition condition, const char* ifname) {
  switch (condition) {
    case security::Condition::kOwe:
      return std::atoi(uci_read_or("wireless", ifname, "owe", kFlagSize, "0").c_str()) == 1;
    case security::Condition::kNoSae:
      return uci_read_or("wireless", ifname, "sae", kFlagSize, "") != "1";
    case security::Condition::kMesh6gMain:
      return std::string_view(ifname) == kMainSsids[2] && is_mesh_enabled();
    case security::Condition::kNone:
      break;
  }
  return true;
}

}  // namespace

int get_encryption_mode_value(const char* ifname, int& out) {
  if (ifname == nullptr) return 1;
  const std::optional<std::string> encryption = uci_read("wireless", ifname, "encryption", kEncryptionSize);
  if (!encryption) return 1;
  for (const security::Reading& row : security::kReadings) {
    if (*encryption != row.encryption || !holds(row.condition, ifname)) continue;
    out = row.code;
    return 0;
  }
  log_error("Unknown encryption mode: %s", encryption->c_str());
  return 1;
}

// Reading and writing of the options behind a wifiSecurity code.
#include "wireless/security_options.h"

#include <optional>
#include <string>
#include <string_view>

#include "domain/interface_plan.h"
#include "platform/log.h"
#include "uci_section.h"
#include "unit/mesh.h"

namespace security {

void write(const Writing& writing, const uci::Section& section, const std::string& key) {
  for (const Option& option : writing.sets) section.set(option.name, option.value);
  if (writing.has_key) section.set("key", key);
  for (const char* option : writing.deletes) section.remove(option);
}

}  // namespace security

namespace {

constexpr std::size_t kFlagSize = 8;
constexpr std::size_t kEncryptionSize = 32;

bool is_mesh_enabled() {
  int mesh = 0;
  return get_mesh_value(mesh) == 0 && mesh == 1;
}

bool holds(security::Condition condition, const uci::Section& access_point) {
  switch (condition) {
    case security::Condition::kOwe:
      return access_point.read_number("owe", kFlagSize) == 1;
    case security::Condition::kNoSae:
      return access_point.read("sae", kFlagSize) != "1";
    case security::Condition::kMesh6gMain:
      return access_point.name() == kMainSsids[2] && is_mesh_enabled();
    case security::Condition::kNone:
      break;
  }
  return true;
}

}  // namespace

int get_encryption_mode_value(const char* ifname, int& out) {
  if (ifname == nullptr) return 1;
  const uci::Section access_point("wireless", ifname);
  const std::optional<std::string> encryption = access_point.read("encryption", kEncryptionSize);
  if (!encryption) return 1;
  for (const security::Reading& row : security::kReadings) {
    if (*encryption != row.encryption || !holds(row.condition, access_point)) continue;
    out = row.code;
    return 0;
  }
  log_error("Unknown encryption mode: %s", encryption->c_str());
  return 1;
}

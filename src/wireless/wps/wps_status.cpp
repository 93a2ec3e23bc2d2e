// Whether WPS is on.
#include "wireless/wps/wps_status.h"

#include <optional>
#include <string>

#include "platform/log.h"
#include "uci_section.h"

namespace {

constexpr std::size_t kFlagSize = 4;

struct Reading {
  const char* section;
  const char* option;
  const char* message;
};
enum Index { kPbc0, kPbc1, kSsid0, kSsid1, kRadio0, kRadio1 };
constexpr Reading kReadings[] = {
    {"ath0", "wps_pbc", "Failed to get ath0_wps_state"},
    {"ath1", "wps_pbc", "Failed to get ath1_wps_state"},
    {"ath0", "disabled", "Failed to get ath0_disabled_state"},
    {"ath1", "disabled", "Failed to get ath1_disabled_state"},
    {"wifi0", "disabled", "Failed to get wifi0_disabled_state"},
    {"wifi1", "disabled", "Failed to get wifi1_disabled_state"},
};

bool is_on(int pbc, int ssid_disabled, int radio_disabled) {
  return pbc != 0 && ssid_disabled != 1 && radio_disabled != 1;
}

}  // namespace

int getWpsStatus(int& out) {
  int values[std::size(kReadings)] = {};
  for (std::size_t i = 0; i < std::size(kReadings); ++i) {
    const Reading& reading = kReadings[i];
    const std::optional<int> value = uci::Section("wireless", reading.section).read_number(reading.option, kFlagSize);
    if (!value) {
      log_error("%s", reading.message);
      return -1;
    }
    values[i] = *value;
  }
  const bool any =
      is_on(values[kPbc0], values[kSsid0], values[kRadio0]) || is_on(values[kPbc1], values[kSsid1], values[kRadio1]);
  out = any ? 1 : 0;
  return 0;
}

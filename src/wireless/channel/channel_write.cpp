// Writing of the radios' channels and LEDs.
#include "wireless/channel/channel_write.h"

#include <string>

#include "domain/channels.h"
#include "domain/interface_plan.h"
#include "platform/file.h"
#include "platform/log.h"
#include "unit/mesh.h"
#include "wireless/wireless_options.h"

namespace {

constexpr const char* kSetChannel = "set_channel_Value";

void set_radio_channel(const Radio& radio, int channel, bool is_controller) {
  if (channel == channels::kRadioOff) {
    set_wireless_option(false, radio.section, "disabled", "1");
    LedForWifi("0", radio.led);
    return;
  }
  set_wireless_option(is_controller, radio.section, "disabled", "0");
  set_wireless_option(is_controller, radio.section, "channel", std::to_string(channel));
  LedForWifi("255", radio.led);
}

}  // namespace

int check_channel_value(int band, int channel) {
  if (!channels::is_band(band)) log_error("Band is not specified");
  return channels::is_permitted(band, channel) ? 0 : 1;
}

bool are_permitted(const Channels& channels) {
  for (std::size_t band = 0; band < kRadios.size(); ++band) {
    if (check_channel_value(static_cast<int>(band), channels[band]) == 0) continue;
    log_error_as(kSetChannel, "Invalid channel %d for %s (band: %d)", channels[band], kRadios[band].section,
                 static_cast<int>(band));
    return false;
  }
  return true;
}

int set_channel_Value(int channel_2g, int channel_5g, int channel_6g) {
  int role = kMeshRoleNone;
  if (get_mesh_role_value(role) != 0) {
    log_error("get_mesh_role_value failed");
    return 1;
  }
  const Channels requested{channel_2g, channel_5g, channel_6g};
  if (!are_permitted(requested)) return 1;
  for (std::size_t band = 0; band < kRadios.size(); ++band) {
    set_radio_channel(kRadios[band], requested[band], role == kMeshRoleController);
  }
  return 0;
}

void LedForWifi(const char* value, const char* led) {
  constexpr std::size_t kRecordSize = 8;
  std::string record(value);
  record.resize(kRecordSize, '\0');
  const std::string path = std::string("/sys/devices/platform/soc@0/soc@0:leds/leds/") + led + "/brightness";
  if (!platform::write_file(path.c_str(), record)) log_error("LedForWifi is error");
}

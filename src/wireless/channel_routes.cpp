// GET /api/v1/wireless/channel and GET /api/v1/repeater/channel.
#include <array>
#include <optional>
#include <string>

#include "answer/answer.h"
#include "domain/channels.h"
#include "handlers.h"
#include "mesh_codes.h"
#include "platform/log.h"
#include "uci_access.h"
#include "wireless.h"
#include "wireless/channel_readers.h"

namespace {

constexpr int kBands = 3;

struct Operating {
  int channel = 0;
  int width_code = 0;
};

json::JsonPtr read_band(int band) {
  int set_channel = 0;
  int set_width = 0;
  Operating current;
  if (get_channel_info(band, set_channel) != 0) log_debug("get channel info error!");
  if (get_flash_channel_width_info(band, current.channel, current.width_code) != 0) {
    log_debug("get flashchannel info error!");
  }
  if (set_channel == channels::kRadioOff) current.channel = channels::kRadioOff;
  if (get_band_info(band, set_width) != 0) log_debug("get band info error!");

  json::JsonPtr object = json::new_object();
  json::add(object.get(), "band", band + 1);
  json::add(object.get(), "setChannel", set_channel);
  json::add(object.get(), "currentChannel", current.channel);
  json::add(object.get(), "setChannelWidth", set_width);
  json::add(object.get(), "currentChannelWidth", current.width_code);
  return object;
}

constexpr std::array<const char*, kBands> kChannelKeys{"current2gChannel", "current5gChannel", "current6gChannel"};
constexpr std::array<const char*, kBands> kWidthKeys{"current2gChannelWidth", "current5gChannelWidth",
                                                     "current6gChannelWidth"};

// nullopt when a band cannot be read.
std::optional<std::array<Operating, kBands>> read_operating() {
  std::array<Operating, kBands> bands;
  for (int band = 0; band < kBands; ++band) {
    Operating& current = bands[static_cast<std::size_t>(band)];
    if (get_flash_channel_width_info(band, current.channel, current.width_code) != 0) {
      log_error("Failed to get flash channel and width info for interface %d", band);
      return std::nullopt;
    }
  }
  return bands;
}

// An agent that has not joined its mesh yet has no operating channels: `bands` is empty then.
json::JsonPtr build_repeater_channels(int connect_band, const std::optional<std::array<Operating, kBands>>& bands) {
  json::JsonPtr root = json::new_object();
  json::add(root.get(), "result", 0);
  json::add(root.get(), "version", 1);
  json::add(root.get(), "connectBand", connect_band);
  for (std::size_t band = 0; band < kBands; ++band) {
    if (bands) {
      json::add(root.get(), kChannelKeys[band], (*bands)[band].channel);
    } else {
      json::add(root.get(), kChannelKeys[band], "---");
    }
  }
  for (std::size_t band = 0; band < kBands; ++band) {
    json::add(root.get(), kWidthKeys[band], bands ? (*bands)[band].width_code : 0);
  }
  return root;
}

// Null on failure.
json::JsonPtr read_repeater_channels() {
  int connect_band = 0;
  if (get_repeater_connect_band(connect_band) != 0) {
    log_error("Failed to get the connectBand option for repeater.repeater_band.mlo \n");
    return nullptr;
  }
  int role = kMeshRoleNone;
  if (get_mesh_role_value(role) != 0) {
    log_error("Failed to get meshRole");
    return nullptr;
  }
  const auto onboarding = uci_read("repacd", "MAPConfig", "OnboardingDone", 4);
  if (!onboarding) log_error("get OnboardingDone failed");
  if (role == kMeshRoleAgent && onboarding == "0") return build_repeater_channels(connect_band, std::nullopt);
  const auto bands = read_operating();
  return bands ? build_repeater_channels(connect_band, bands) : nullptr;
}

}  // namespace

int handle_get_wireless_channel(FCGX_Request* request) {
  const json::JsonPtr root = json::new_object();
  json::add(root.get(), "result", 0);
  json::add(root.get(), "version", 1);
  json::JsonPtr bands = json::new_array();
  for (int band = 0; band < kBands; ++band) json::append(bands.get(), read_band(band));
  json::add(root.get(), "wirelessChannel", std::move(bands));
  return answer(request, root);
}

int handle_get_channel_setting_info(FCGX_Request* request) {
  const json::JsonPtr root = read_repeater_channels();
  if (root != nullptr) return answer(request, root);
  answer(request, kResultUnusable);
  return 1;
}

// GET /api/v1/wireless/channel and GET /api/v1/repeater/channel.
#include <array>
#include <optional>
#include <string>
#include <utility>

#include "answer/answer.h"
#include "domain/channels.h"
#include "handlers.h"
#include "platform/log.h"
#include "uci_section.h"
#include "unit/mesh.h"
#include "wireless/channel/channel_readers.h"

namespace {

constexpr const char* kRepeaterHandler = "handle_get_channel_setting_info";

constexpr const char* kRouterHandler = "handle_get_wireless_channel";

constexpr int kBands = 3;

struct Operating {
  int channel = 0;
  int width_code = 0;
};

json::ObjectText read_band(int band) {
  int set_channel = 0;
  int set_width = 0;
  Operating current;
  if (get_channel_info(band, set_channel) != 0) log_debug_as(kRouterHandler, "get channel info error!");
  if (get_flash_channel_width_info(band, current.channel, current.width_code) != 0) {
    log_debug_as(kRouterHandler, "get flashchannel info error!");
  }
  if (set_channel == channels::kRadioOff) current.channel = channels::kRadioOff;
  if (get_band_info(band, set_width) != 0) log_debug_as(kRouterHandler, "get band info error!");

  json::ObjectText object;
  object.add("band", band + 1);
  object.add("setChannel", set_channel);
  object.add("currentChannel", current.channel);
  object.add("setChannelWidth", set_width);
  object.add("currentChannelWidth", current.width_code);
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
      log_error_as(kRepeaterHandler, "Failed to get flash channel and width info for interface %d", band);
      return std::nullopt;
    }
  }
  return bands;
}

// An agent that has not joined its mesh yet has no operating channels: `bands` is empty then.
json::ObjectText build_repeater_channels(int connect_band, const std::optional<std::array<Operating, kBands>>& bands) {
  json::ObjectText root = json::success_text();
  root.add("connectBand", connect_band);
  for (std::size_t band = 0; band < kBands; ++band) {
    if (bands) {
      root.add(kChannelKeys[band], (*bands)[band].channel);
    } else {
      root.add(kChannelKeys[band], "---");
    }
  }
  for (std::size_t band = 0; band < kBands; ++band) {
    root.add(kWidthKeys[band], bands ? (*bands)[band].width_code : 0);
  }
  return root;
}

// nullopt on failure.
std::optional<json::ObjectText> read_repeater_channels() {
  int connect_band = 0;
  if (get_repeater_connect_band(connect_band) != 0) {
    log_error_as(kRepeaterHandler, "Failed to get the connectBand option for repeater.repeater_band.mlo \n");
    return std::nullopt;
  }
  int role = kMeshRoleNone;
  if (get_mesh_role_value(role) != 0) {
    log_error_as(kRepeaterHandler, "Failed to get meshRole");
    return std::nullopt;
  }
  const auto onboarding = uci::Section("repacd", "MAPConfig").read("OnboardingDone", 4);
  if (!onboarding) log_error_as(kRepeaterHandler, "get OnboardingDone failed");
  if (role == kMeshRoleAgent && onboarding == "0") return build_repeater_channels(connect_band, std::nullopt);
  const auto bands = read_operating();
  if (!bands) return std::nullopt;
  return build_repeater_channels(connect_band, bands);
}

}  // namespace

int handle_get_wireless_channel(FCGX_Request* request) {
  json::ListText bands;
  for (int band = 0; band < kBands; ++band) bands.add(read_band(band));
  json::ObjectText root = json::success_text();
  root.add("wirelessChannel", std::move(bands));
  return answer(request, std::move(root));
}

int handle_get_channel_setting_info(FCGX_Request* request) {
  std::optional<json::ObjectText> root = read_repeater_channels();
  if (root) return answer(request, std::move(*root));
  answer(request, answers::kUnusable);
  return 1;
}

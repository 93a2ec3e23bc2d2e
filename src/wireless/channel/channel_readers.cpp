// Configured channels and widths from UCI, operating ones from `iw`.
#include "wireless/channel/channel_readers.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "domain/channels.h"
#include "domain/interface_plan.h"
#include "platform/log.h"
#include "platform/process.h"
#include "platform/text.h"
#include "uci_section.h"
#include "unit/mesh.h"
#include "wireless/iw_reading.h"

namespace {

constexpr const char* kChannelInfo = "get_channel_info";

constexpr std::size_t kTextSize = 8;
constexpr std::size_t kOnboardingSize = 4;
constexpr std::size_t kHtmodeSize = 16;

// nullptr, told in the log, outside 0..2.
const char* radio_of_band(int band_index, platform::LogPlace place = platform::LogPlace::here()) {
  if (band_index >= 0 && band_index < static_cast<int>(kRadios.size())) {
    return kRadios[static_cast<std::size_t>(band_index)].section;
  }
  log_error_at(place, "Invalid interface index: %d", band_index);
  return nullptr;
}

std::string ask_iw_for_channel(const char* radio) {
  std::string channel;
  if (get_channel_by_iw_cmd(radio, channel) == 0) return channel;
  log_error_as(kChannelInfo, "Failed to get channel via iw cmd for interface %s", radio);
  return "0";
}

struct UplinkState {
  std::string onboarding;
  std::string repeater_status;
  int role = kMeshRoleNone;
};

// False when the mesh role cannot be read.
bool read_uplink_state(UplinkState& state) {
  const std::optional<std::string> onboarding =
      uci::Section("repacd", "MAPConfig").read("OnboardingDone", kOnboardingSize);
  if (!onboarding) log_error_as(kChannelInfo, "get OnboardingDone failed");
  state.onboarding = onboarding.value_or("");
  const std::optional<std::string> status = uci::Section("repeater", "repeater_band").read("status", kTextSize);
  if (!status) log_error_as(kChannelInfo, "get repeater result error(if not repeater mode, ignore this error)");
  state.repeater_status = status.value_or("");
  if (get_mesh_role_value(state.role) == 0) return true;
  log_error_as(kChannelInfo, "Failed to get meshRole");
  return false;
}

// The channel as a text: the operating one where an uplink decides, else the configured one.
std::optional<std::string> read_channel_text(const char* radio, const UplinkState& state) {
  if (state.role == kMeshRoleAgent) return state.onboarding == "1" ? ask_iw_for_channel(radio) : "0";
  if (state.role == kMeshRoleNone && state.repeater_status == "success") return ask_iw_for_channel(radio);
  std::optional<std::string> channel = uci::Section("wireless", radio).read("channel", kTextSize);
  if (!channel) log_error_as(kChannelInfo, "Failed to get channel for interface %s", radio);
  return channel;
}

// What the repeater is connected with, by the uplink's MLO variant and what its band begins with.
struct ConnectBand {
  const char* mlo;
  std::string_view band;
  int code;
};
constexpr std::array<ConnectBand, 6> kConnectBands{{
    {"0", "2.4GHz", 1},
    {"0", "5GHz", 2},
    {"0", "6GHz", 3},
    {"1", "", 4},
    {"2", "", 5},
    {"3", "", 6},
}};

}  // namespace

int get_channel_info(int band_index, int& out) {
  const char* radio = radio_of_band(band_index);
  if (radio == nullptr) return 1;
  const std::optional<std::string> disabled = uci::Section("wireless", radio).read("disabled", kTextSize);
  if (!disabled) {
    log_error("Failed to get disabled status for interface %s", radio);
    return 1;
  }
  UplinkState state;
  if (!read_uplink_state(state)) return 1;
  const std::optional<std::string> channel = read_channel_text(radio, state);
  if (!channel) return 1;
  // "auto" reads as kAutomatic, as "0" does.
  out = *disabled == "1" ? channels::kRadioOff : std::atoi(channel->c_str());
  return 0;
}

int get_channel_by_iw_cmd(const char* ifname, std::string& out) {
  constexpr std::size_t kChannelDigitsMax = 3;
  if (ifname == nullptr) {
    log_error("Invalid parameter: interface=%p, channelValue=%p", static_cast<const void*>(ifname),
              static_cast<const void*>(&out));
    return 1;
  }
  out.clear();
  const platform::ProcessResult result = platform::run({"iw", "dev", ifname, "info"});
  const std::string command = std::string("iw dev ") + ifname + " info";
  if (!result.started) {
    log_error("Failed to execute command: %s (popen error)", command.c_str());
    return 1;
  }
  const std::optional<std::string> text = iw::parse_channel_text(result.output);
  const bool is_valid = text && !text->empty() && text->size() <= kChannelDigitsMax;
  if (text && !is_valid) log_error("Channel length invalid: %zu (interface=%s)", text->size(), ifname);
  if (result.exit_status() != 0) {
    log_error("Command execute failed: %s (exit status=%d)", command.c_str(), result.exit_status());
  }
  if (!is_valid || result.exit_status() != 0) {
    log_error("Failed to parse channel from iw output (interface=%s)", ifname);
    return 1;
  }
  out = *text;
  return 0;
}

int get_channel_width_by_iw_cmd(const char* ifname, int& channel, int& width_mhz) {
  if (ifname == nullptr || *ifname == '\0') return 1;
  const platform::ProcessResult result = platform::run({"iw", "dev", ifname, "info"});
  if (!result.started) return 1;
  const std::optional<iw::Operating> operating = iw::parse_operating(result.output);
  if (!operating) return 1;
  channel = operating->channel;
  width_mhz = operating->width_mhz;
  return 0;
}

int get_flash_channel_width_info(int band_index, int& channel, int& width_code) {
  const char* radio = radio_of_band(band_index);
  if (radio == nullptr) return 1;
  int width_mhz = 0;
  if (get_channel_width_by_iw_cmd(radio, channel, width_mhz) != 0) {
    log_error("Failed to get channel width via iw cmd for interface %s", radio);
    return 1;
  }
  const std::optional<int> code = channels::width_code_of_mhz(width_mhz);
  if (!code) {
    log_error("width value %d not found!", width_mhz);
    return 1;
  }
  width_code = *code;
  return 0;
}

int get_flashchannel_info(std::string_view output, int& channel, int& width_code) {
  constexpr std::size_t kLineSize = 10;
  for (const std::string& line : platform::split_lines(output, kLineSize)) {
    std::array<char, kLineSize> channel_text{};
    std::array<char, kLineSize> width_text{};
    if (std::sscanf(line.c_str(), "%9s %9s", channel_text.data(), width_text.data()) < 1) continue;
    channel = std::atoi(channel_text.data());
    const std::string width(width_text.data());
    const auto* row =
        std::ranges::find_if(channels::kWidths, [&](const auto& known) { return std::to_string(known.mhz) == width; });
    if (row != channels::kWidths.end()) {
      width_code = row->code;
    } else {
      log_error("width not found!");
    }
  }
  return 0;
}

int get_band_info(int band_index, int& out) {
  const char* radio = radio_of_band(band_index);
  if (radio == nullptr) return 1;
  const std::optional<std::string> htmode = uci::Section("wireless", radio).read("htmode", kHtmodeSize);
  if (!htmode) return 1;
  const std::optional<int> code = channels::width_code_of_htmode(*htmode);
  if (!code) {
    log_error("current not found!");
    return 1;
  }
  out = *code;
  return 0;
}

int get_repeater_connect_band(int& out) {
  const uci::Section uplink("repeater", "repeater_band");
  const std::optional<std::string> mlo = uplink.read("mlo", 32);
  if (!mlo) {
    log_error("Failed to get the connectBand_str option for repeater.repeater_band.mlo");
    return 1;
  }
  const std::optional<std::string> band = uplink.read("repeater_select_band", 16);
  if (!band) {
    log_error("get repeater_select_band failed");
    return 1;
  }
  out = 0;
  for (const ConnectBand& row : kConnectBands) {
    if (*mlo == row.mlo && band->starts_with(row.band)) out = row.code;
  }
  return 0;
}

// Look-ups in the channel tables.
#include "domain/channels.h"

#include <algorithm>

#include "platform/log.h"

namespace channels {

std::optional<int> width_code_of_htmode(std::string_view htmode) {
  const auto* row = std::ranges::find(kHtmodes, htmode, &WidthOfHtmode::htmode);
  if (row == kHtmodes.end()) return std::nullopt;
  return row->code;
}

std::optional<int> width_code_of_mhz(int mhz) {
  const auto* row = std::ranges::find(kWidths, mhz, &WidthOfMhz::mhz);
  if (row == kWidths.end()) return std::nullopt;
  return row->code;
}

}  // namespace channels

int check_channel_value(int band, int channel) {
  if (band < 0 || band >= static_cast<int>(channels::kPermitted.size())) {
    log_error("Band is not specified");
    return 1;
  }
  const std::span<const int> permitted = channels::kPermitted[static_cast<std::size_t>(band)];
  return std::ranges::find(permitted, channel) == permitted.end() ? 1 : 0;
}

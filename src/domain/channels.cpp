// Look-ups in the channel tables.
#include "domain/channels.h"

#include <algorithm>

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

bool is_band(int band) { return band >= 0 && band < static_cast<int>(kPermitted.size()); }

bool is_permitted(int band, int channel) {
  if (!is_band(band)) return false;
  const std::span<const int> permitted = kPermitted[static_cast<std::size_t>(band)];
  return std::ranges::find(permitted, channel) != permitted.end();
}

}  // namespace channels

// Parsers of what `iw` prints. Pure: the caller runs the tool.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace iw {

// The operating channel and width of "channel 36 (5180 MHz), width: 80 MHz, center1: 5210 MHz".
struct Operating {
  int channel = 0;
  int width_mhz = 0;
};

// Text between the first "channel " and the " (" behind it; nullopt when no line holds both.
std::optional<std::string> parse_channel_text(std::string_view info);
// nullopt when the first line with channel and width is not of the form above, or when there is none.
std::optional<Operating> parse_operating(std::string_view info);
// Address of one link of an MLD. Known are the platform's form ("link 0:", then a line with "addr") and that of
// upstream iw (" - link ID  0 link addr 02:00:..."). At most `max_length` bytes.
std::optional<std::string> parse_link_address(std::string_view info, unsigned link_id, std::size_t max_length);

}  // namespace iw

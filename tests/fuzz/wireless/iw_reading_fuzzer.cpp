// Any bytes as what `iw` prints: texts keep their bounds and end where their line does.
#include "require.h"
#include "wireless/iw_reading.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMacLength = 17;
  const std::string_view text = fuzzing::text_of(data, size);
  if (const auto channel = iw::parse_channel_text(text)) {
    fuzzing::require(channel->find('\n') == std::string::npos, "a channel beyond its line");
  }
  iw::parse_operating(text);
  for (const unsigned link : {0U, 1U, 2U, 10U, 4294967295U}) {
    const auto address = iw::parse_link_address(text, link, kMacLength);
    if (!address) continue;
    fuzzing::require(!address->empty() && address->size() <= kMacLength, "an address's bound");
    fuzzing::require(address->find_first_of(" \t") == std::string::npos, "an address of two words");
  }
  return 0;
}

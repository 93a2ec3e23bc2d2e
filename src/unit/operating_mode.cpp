// The one reader and writer of the operating mode.
#include "unit/operating_mode.h"

#include "uci_section.h"

namespace unit {
namespace {

constexpr const char* kOption = "op_mode";

uci::Section system() { return {"system", "@system[0]"}; }

}  // namespace

std::optional<OperatingMode> operating_mode() {
  constexpr std::size_t kModeSize = 32;
  std::optional<std::string> text = system().read(kOption, kModeSize);
  return text ? std::optional(OperatingMode(*std::move(text))) : std::nullopt;
}

OperatingMode operating_mode_or_none() { return operating_mode().value_or(OperatingMode("")); }

bool set_operating_mode(const char* mode) { return system().set(kOption, mode); }

}  // namespace unit

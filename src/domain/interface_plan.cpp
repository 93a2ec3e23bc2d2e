// Look-ups in the slot tables.
#include "domain/interface_plan.h"

#include <algorithm>

std::span<const SsidSlot> ssid_slots(std::string_view op_mode) {
  if (op_mode == "re") return kRepeaterSlots;
  return kRouterSlots;
}

const SsidSlot* find_wireless_config(int repeater_flag, const char* ssid_name) {
  if (ssid_name == nullptr) return nullptr;
  const std::span<const SsidSlot> slots = ssid_slots(repeater_flag == 1 ? "re" : "");
  const auto found = std::ranges::find(slots, std::string_view(ssid_name),
                                       [](const SsidSlot& slot) { return std::string_view(slot.ssid_name); });
  return found == slots.end() ? nullptr : &*found;
}

const SsidSlot* find_mlo_interface(int mlo_mode) {
  const auto* found = std::ranges::find(kMloInterfaces, mlo_mode, &SsidSlot::mlo_mode);
  return found == kMloInterfaces.end() ? nullptr : found;
}

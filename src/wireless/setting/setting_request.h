// What a POST /api/v1/wireless/setting asks for.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "domain/brands.h"
#include "wireless/channel/channel_write.h"
#include "wireless/setting/ssid_info.h"

// One element of "wirelessConfig"; a member that it omits is that of the element before.
struct SlotRequest {
  std::optional<std::string> name;
  std::string band;
  WirelessIfaceInfo info;
};

struct SettingRequest {
  bool is_repeater = false;
  int ieee802dot11r = 0;
  Channels channels{};
  int mesh = 0;  // a repeater has no mesh switch
  int mlo = 0;
  std::vector<SlotRequest> slots;
};

// nullopt (logged) for a request that cannot be used: no JSON, a member missing, a channel that is not permitted, a
// name or password that UCI cannot hold.
std::optional<SettingRequest> read_setting_request(const char* body);

// What is done about a slot.
enum class SlotKind { kAccessPoint, kMlo, kMesh };
SlotKind kind_of_slot(const SettingRequest& request, const SlotRequest& slot, const brands::Brand& brand);

// Whether every slot can be written, up to a mesh change that ends the request. A no is logged.
bool can_set_slots(const SettingRequest& request, const brands::Brand& brand);

// Readers of the two slots that stand for several access points: MLO and mesh backhaul.
#pragma once

#include "domain/interface_plan.h"
#include "wireless/setting/ssid_info.h"

// All int results: 0 on success, non-zero on failure (logged).

// The MLO mode: 0 off, 1 = 2.4+5, 2 = 2.4+6, 3 = 5+6, 4 = 2.4+5+6 GHz.
int get_mlo_value(int& out);
// The MLO slot in that mode; `slot` is the answer's own copy, its band label follows the mode.
int get_mlo_info(SsidSlot& slot, WirelessIfaceInfo& info, int mlo_mode);
// The backhaul slot; `slot` is the answer's own copy, its band label follows the mesh mode.
int get_mesh_info(SsidSlot& slot, WirelessIfaceInfo& info, int mesh_enabled);

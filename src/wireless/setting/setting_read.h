// The channels of GET /api/v1/wireless/setting.
#pragma once

#include "answer/json_text.h"
#include "unit/operating_mode.h"

// Adds "set2GChannel", "set5GChannel" and "set6GChannel": the configured channels, and for a connected repeater the
// operating ones. 0 on success, 1 on failure (logged).
int get_channel_value(json::ObjectText& root, const unit::OperatingMode& mode, int mesh_enabled);

// Writing of the detail settings.
#pragma once

#include "wireless/detail/detail_settings.h"

// Writes every setting but 802.11r, and starts the reload. The widths and powers must be of the tables. WPS that is
// refused writes nothing; after another failure the steps before stay written, and nothing is reloaded. 0, or 1
// (logged).
int set_wlan_detail_info(const WlanDetailInfo& info);

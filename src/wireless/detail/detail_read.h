// Reading of the detail settings.
#pragma once

#include "wireless/detail/detail_settings.h"

// 0, or 1 (logged) with `info` partly filled. A mesh agent reports fixed values for what its controller decides.
int get_wlan_detail_info(WlanDetailInfo& info);

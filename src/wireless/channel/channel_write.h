// Writing of the radios' channels and LEDs.
#pragma once

#include <array>

#include "domain/interface_plan.h"

// By band 0, 1, 2 (2.4, 5, 6 GHz): -1 off, 0 automatic.
using Channels = std::array<int, kRadios.size()>;

// 0 when band 0, 1, 2 may be set to `channel` (-1 off, 0 automatic), 1 when not, or (logged) there is no such band.
int check_channel_value(int band, int channel);

// False (logged) when one of them is not.
bool are_permitted(const Channels& channels);
// Channels of the three radios, and their LEDs; all of them or none. 0, or 1 (logged). A mesh controller's copy in
// wireless_for_easymesh is kept in step.
int set_channel_Value(int channel_2g, int channel_5g, int channel_6g);

// Writes `value` ("0" off, "255" on; at most 8 bytes) to the brightness of an LED such as "led_2g".
void LedForWifi(const char* value, const char* led);

// Readers of configured and operating channels and widths.
#pragma once

#include <string>
#include <string_view>

// All: 0 on success, non-zero on failure (logged). Width codes: 0, 1, 4, 5, 6 for 20, 40, 80, 160, 320 MHz.

// Configured channel of band 0, 1, 2 (2.4, 5, 6 GHz): -1 radio off, 0 automatic.
int get_channel_info(int band_index, int& out);
// Operating channel text ("36") of an interface, from `iw`.
int get_channel_by_iw_cmd(const char* ifname, std::string& out);
// Operating channel and width in MHz of an interface, from `iw`.
int get_channel_width_by_iw_cmd(const char* ifname, int& channel, int& width_mhz);
// Operating channel and width of band 0, 1, 2, from `iw`.
int get_flash_channel_width_info(int band_index, int& channel, int& width_code);
// Channel and width of the last line of "36 80" lines (`iw ... info | awk` prints them). Always 0; what is not found
// stays as it was.
int get_flashchannel_info(std::string_view output, int& channel, int& width_code);
// Configured width of band 0, 1, 2.
int get_band_info(int band_index, int& out);
// What the repeater is connected with: 1, 2, 3 = 2.4, 5, 6 GHz; 4, 5, 6 = MLO variants; 0 = none of them.
int get_repeater_connect_band(int& out);

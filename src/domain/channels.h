// Channels that a radio may be set to, and the width codes of the channel routes.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>

namespace channels {

inline constexpr int kRadioOff = -1;
inline constexpr int kAutomatic = 0;

inline constexpr std::array<int, 15> k2g{-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
inline constexpr std::array<int, 22> k5g{-1,  0,   36,  40,  44,  48,  52,  56,  60,  64,  100,
                                         104, 108, 112, 116, 120, 124, 128, 132, 136, 140, 144};
inline constexpr std::array<int, 26> k6g{-1, 0,  1,  5,  9,  13, 17, 21, 25, 29, 33, 37, 41,
                                         45, 49, 53, 57, 61, 65, 69, 73, 77, 81, 85, 89, 93};

// By band 0, 1, 2 (2.4, 5, 6 GHz).
inline constexpr std::array<std::span<const int>, 3> kPermitted{k2g, k5g, k6g};

// The channel routes have width codes of their own; the detail settings count 0 to 4.
struct WidthOfHtmode {
  std::string_view htmode;
  int code;
};
inline constexpr std::array<WidthOfHtmode, 11> kHtmodes{{
    {"HT20", 0},
    {"EHT20", 0},
    {"HT40", 1},
    {"EHT40", 1},
    {"EHT40+", 1},
    {"EHT40-", 1},
    {"HT80", 4},
    {"EHT80", 4},
    {"EHT160", 5},
    {"VHT160", 5},
    {"EHT320", 6},
}};

struct WidthOfMhz {
  int mhz;
  int code;
};
inline constexpr std::array<WidthOfMhz, 5> kWidths{{{20, 0}, {40, 1}, {80, 4}, {160, 5}, {320, 6}}};

// nullopt for what is not in the table.
std::optional<int> width_code_of_htmode(std::string_view htmode);
std::optional<int> width_code_of_mhz(int mhz);

// Band 0, 1 or 2.
bool is_band(int band);
// That band may be set to `channel` (-1 off, 0 automatic). False for any other band.
bool is_permitted(int band, int channel);

}  // namespace channels

// Answers of the wireless settings; their spacing, which differs from the common ones, is kept as it is.
#pragma once

#include <string_view>

inline constexpr std::string_view kWirelessOkWait20 = R"({"result":0, "version":1, "waitTime": 20})";
inline constexpr std::string_view kWirelessOkWait70 = R"({"result":0, "version":1, "waitTime": 70})";
inline constexpr std::string_view kWirelessOkWait100 = R"({"result":0, "version":1, "waitTime": 100})";
inline constexpr std::string_view kWirelessOkWait150 = R"({"result":0, "version":1, "waitTime": 150})";
inline constexpr std::string_view kWirelessOkWait180 = R"({"result":0, "version":1, "waitTime": 180})";
inline constexpr std::string_view kWirelessOkWait220 = R"({"result":0, "version":1, "waitTime": 220})";
inline constexpr std::string_view kWirelessOkWait230 = R"({"result":0, "version":1, "waitTime": 230})";

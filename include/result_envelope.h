// The fixed answers of POST routes, spaced as the clients know them.
#pragma once

#include <string_view>

inline constexpr std::string_view kResultUnusable = R"({"result": 1})";  // no body, not JSON, a key missing
inline constexpr std::string_view kResultFailed = R"({"result": 2})";    // valid, but applying it failed
inline constexpr std::string_view kResultOkWait20 = R"({"result": 0, "version": 1, "waitTime": 20})";
inline constexpr std::string_view kResultOkWait60 = R"({"result": 0, "version": 1, "waitTime": 60})";

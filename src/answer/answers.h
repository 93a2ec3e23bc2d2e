// The fixed answers, spaced as the clients know them.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string_view>

namespace answers {

// What a request came to, as the answer's `result` tells it.
enum class Result {
  kOk = 0,
  kUnusable = 1,     // no body, not JSON, a key missing or wrong
  kFailed = 2,       // valid, but applying it failed
  kNotVerified = 3,  // a firmware image that is not for this unit, or damaged
};

inline constexpr std::string_view kUnusable = R"({"result": 1})";
inline constexpr std::string_view kFailed = R"({"result": 2})";
inline constexpr std::string_view kNotVerified = R"({"result": 3})";

inline constexpr std::string_view kNothing = "null";
inline constexpr std::string_view kCleared = R"({"result": 0, "version": 1})";
// The key is spelled so, and kept as it is.
inline constexpr std::string_view kInstalling = R"({"result": 0, "version": 1, "waitTime": 300, "Massage": ""})";
inline constexpr std::string_view kConnecting = "{\"result\": 0, \"version\": 1, \t\"waitTime\": 80}";
inline constexpr std::string_view kNotConnected = R"({"result": 1, "version": 1,    "waitTime": 20})";

// Accepted: the client asks again after that time.
struct Wait {
  int seconds;
  std::string_view text;
};
inline constexpr std::array<Wait, 13> kWaits{{
    {5, R"({"result": 0, "version": 1, "waitTime": 5})"},
    {10, R"({"result": 0, "version": 1, "waitTime": 10})"},
    {20, R"({"result": 0, "version": 1, "waitTime": 20})"},
    {50, R"({"result": 0, "version": 1, "waitTime": 50})"},
    {60, R"({"result": 0, "version": 1, "waitTime": 60})"},
    {90, R"({"result": 0, "version": 1, "waitTime": 90})"},
    {100, R"({"result": 0, "version": 1, "waitTime": 100})"},
    {120, R"({"result": 0, "version": 1, "waitTime": 120})"},
    {300, R"({"result": 0, "version": 1, "waitTime": 300})"},
    {360, R"({"result": 0, "version": 1, "waitTime": 360})"},
    {420, R"({"result": 0, "version": 1, "waitTime": 420})"},
    {480, R"({"result": 0, "version": 1, "waitTime": 480})"},
    {500, R"({"result": 0, "version": 1, "waitTime": 500})"},
}};
// The wireless settings' own.
inline constexpr std::array<Wait, 9> kWirelessWaits{{
    {20, R"({"result":0, "version":1, "waitTime": 20})"},
    {70, R"({"result":0, "version":1, "waitTime": 70})"},
    {100, R"({"result":0, "version":1, "waitTime": 100})"},
    {120, R"({"result":0, "version":1, "waitTime": 120})"},
    {130, R"({"result":0, "version":1, "waitTime": 130})"},
    {150, R"({"result":0, "version":1, "waitTime": 150})"},
    {180, R"({"result":0, "version":1, "waitTime": 180})"},
    {220, R"({"result":0, "version":1, "waitTime": 220})"},
    {230, R"({"result":0, "version":1, "waitTime": 230})"},
}};

// The text of a row; a time that has none is a mistake of ours, and throws, or does not compile.
template <std::size_t kCount>
constexpr std::string_view text_of(const std::array<Wait, kCount>& waits, int seconds) {
  const auto* row = std::ranges::find(waits, seconds, &Wait::seconds);
  return row != waits.end() ? row->text : throw std::out_of_range("no answer names this wait");
}
consteval std::string_view wait(int seconds) { return text_of(kWaits, seconds); }
consteval std::string_view wireless_wait(int seconds) { return text_of(kWirelessWaits, seconds); }

// The answer to a request that came to anything but kOk.
constexpr std::string_view refusal(Result result) {
  if (result == Result::kFailed) return kFailed;
  return result == Result::kNotVerified ? kNotVerified : kUnusable;
}

// What a request came to: what is answered, and what is started once that is written.
struct Outcome {
  Result result = Result::kOk;
  std::string_view text;
  const char* afterwards = nullptr;  // a command of our own constants
};
constexpr Outcome accepted(std::string_view text, const char* afterwards = nullptr) {
  return {Result::kOk, text, afterwards};
}
constexpr Outcome refused(Result result) { return {result, refusal(result), nullptr}; }

}  // namespace answers

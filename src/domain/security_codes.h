// The wifiSecurity codes, and what UCI says for each of them.
#pragma once

#include <array>
#include <span>

inline constexpr int kSecurityOpen = 1;   // open or enhanced open
inline constexpr int kSecurityWpa2 = 2;   // WPA2-PSK
inline constexpr int kSecurityWpa3 = 3;   // WPA3-SAE
inline constexpr int kSecurityMixed = 4;  // WPA2/WPA3 mixed

namespace security {

// --- Reading.

// What must hold beside the text of `encryption`.
enum class Condition {
  kNone,
  kOwe,         // `owe` is 1
  kNoSae,       // `sae` is unreadable or not "1"
  kMesh6gMain,  // the access point is the 6 GHz main one, and mesh is enabled
};
struct Reading {
  const char* encryption;
  Condition condition;
  int code;
};
// The first row that fits counts.
inline constexpr std::array<Reading, 7> kReadings{{
    {"none", Condition::kNone, kSecurityOpen},
    {"psk2", Condition::kNone, kSecurityWpa2},
    {"ccmp", Condition::kOwe, kSecurityOpen},
    {"ccmp", Condition::kNone, kSecurityWpa3},
    {"psk2+ccmp", Condition::kNoSae, kSecurityWpa2},
    {"psk2+ccmp", Condition::kMesh6gMain, kSecurityWpa3},
    {"psk2+ccmp", Condition::kNone, kSecurityMixed},
}};

// --- Writing.

struct Option {
  const char* name;
  const char* value;
};
// `sets` are written in their order, then `key` where there is one, then `deletes` are deleted.
struct Writing {
  int code;
  std::span<const Option> sets;
  bool has_key;
  std::span<const char* const> deletes;
};

inline constexpr Option kSsidWpa2[] = {{"encryption", "psk2+ccmp"}};
inline constexpr Option kSsidWpa3[] = {{"encryption", "ccmp"},
                                       {"sae", "1"},
                                       {"sae_confirm_immediate", "1"},
                                       {"force_invalid_group", "1"},
                                       {"ieee80211w", "2"}};
inline constexpr Option kSsidMixed[] = {{"encryption", "psk2+ccmp"},
                                        {"sae", "1"},
                                        {"sae_confirm_immediate", "1"},
                                        {"force_invalid_group", "1"},
                                        {"ieee80211w", "1"}};
inline constexpr Option kSsidOpen[] = {{"encryption", "none"}};
inline constexpr Option kEnhancedOpen[] = {{"owe", "1"}, {"encryption", "ccmp"}};
inline constexpr const char* kWpa2Deletes[] = {"sae", "sae_confirm_immediate", "force_invalid_group", "ieee80211w"};
inline constexpr const char* kOpenDeletes[] = {"key", "sae", "sae_confirm_immediate", "force_invalid_group",
                                               "ieee80211w"};
inline constexpr const char* kOweDelete[] = {"owe"};

// An access point of 2.4 or 5 GHz. Codes that are not in the table write nothing.
inline constexpr std::array<Writing, 4> kSsidWritings{{
    {kSecurityWpa2, kSsidWpa2, true, kWpa2Deletes},
    {kSecurityWpa3, kSsidWpa3, true, {}},
    {kSecurityMixed, kSsidMixed, true, {}},
    {kSecurityOpen, kSsidOpen, false, kOpenDeletes},
}};
// An access point of 6 GHz ("ath2..."), where open means enhanced open.
inline constexpr std::array<Writing, 4> kSsidWritings6g{{
    {kSecurityWpa2, kSsidWpa2, true, kWpa2Deletes},
    {kSecurityWpa3, kSsidWpa3, true, kOweDelete},
    {kSecurityMixed, kSsidMixed, true, {}},
    {kSecurityOpen, kEnhancedOpen, false, kOpenDeletes},
}};

inline constexpr Option kMloWpa3[] = {{"encryption", "ccmp"}, {"sae", "1"}};
inline constexpr Option kMloMixed[] = {{"encryption", "psk2+ccmp"}, {"sae", "1"}};
inline constexpr Option kMloOpen[] = {{"encryption", "ccmp"}, {"owe", "1"}};
inline constexpr const char* kMloWpa2Deletes[] = {"sae", "owe"};
inline constexpr const char* kMloOpenDeletes[] = {"key", "sae"};

// A link of the MLO SSID.
inline constexpr std::array<Writing, 4> kMloWritings{{
    {kSecurityMixed, kMloMixed, true, kOweDelete},
    {kSecurityWpa3, kMloWpa3, true, kOweDelete},
    {kSecurityWpa2, kSsidWpa2, true, kMloWpa2Deletes},
    {kSecurityOpen, kMloOpen, false, kMloOpenDeletes},
}};

// The row of `code`, or nullptr.
const Writing* find_writing(std::span<const Writing> table, int code);

}  // namespace security

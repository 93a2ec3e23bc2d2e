// GET and POST /api/v1/wireless/detail-setting.
#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "answer/read_object.h"
#include "handlers.h"
#include "platform/log.h"
#include "unit/mesh.h"
#include "wireless/detail/detail_read.h"
#include "wireless/detail/detail_settings.h"
#include "wireless/detail/detail_tables.h"
#include "wireless/detail/detail_write.h"

namespace {

constexpr const char* kHandler = "handle_set_wireless_detail_setting";

constexpr BodyMessages kBodyMessages{.no_content = "Empty data is passed on setting wireless detailed config.",
                                     .no_json = "Failed to parse data to json format."};

// A key of both documents, in their order.
struct Key {
  const char* name;
  int WlanDetailInfo::*field;
  int min;
  int max;
  const char* refusal = nullptr;  // what the log says of a missing or wrong one; most are refused silently
};
constexpr int kPercentMax = 100;
using Info = WlanDetailInfo;
// clang-format off
constexpr std::array<Key, 18> kKeys{{
    {"beaconInterval",            &Info::beacon_interval,             40, 1000},
    {"dtimPeriod",                &Info::dtim_period,                 1,  255},
    {"bandWidth2G",               &Info::band_width_2g,               0,  1},
    {"bandWidth5G",               &Info::band_width_5g,               0,  3},
    {"bandWidth6G",               &Info::band_width_6g,               0,  4},
    {"power2G",                   &Info::power_2g,                    0,  kPercentMax},
    {"power5G",                   &Info::power_5g,                    0,  kPercentMax},
    {"power6G",                   &Info::power_6g,                    0,  kPercentMax},
    {"multicastConversionEnable", &Info::multicast_conversion_enable, 0,  1},
    {"guestSsidIsolationEnable",  &Info::guest_ssid_isolation_enable, 0,  1},
    {"beamforming5GEnable",       &Info::beamforming_5g_enable,       0,  1},
    {"beamforming6GEnable",       &Info::beamforming_6g_enable,       0,  1},
    {"ieee802dot11r",             &Info::ieee802dot11r,               0,  1},
    {"muMimoEnable",              &Info::mu_mimo_enable,              0,  1},
    {"ofdmaEnable",               &Info::ofdma_enable,                0,  1},
    {"multiRuEnable",             &Info::multi_ru_enable,             0,  1},
    {"wpsEnable",                 &Info::wps_enable,                  0,  1, "Get wlanDetailSetting.wpsEnable error"},
    {"bandSteeringEnable",        &Info::band_steering_enable,        0,  2,
     "Get wlanDetailSetting.bandSteeringEnable error"},
}};
// The powers, which are percentages of the table and are written in dBm.
struct PowerKey {
  const char* band;
  int WlanDetailInfo::* field;
};
constexpr std::array<PowerKey, 3> kPowerKeys{{
    {"2.4G", &Info::power_2g},
    {"5G",   &Info::power_5g},
    {"6G",   &Info::power_6g},
}};
// clang-format on

bool is_permitted(const Key& key, int value) {
  const bool is_power = std::ranges::find(kPowerKeys, key.field, &PowerKey::field) != kPowerKeys.end();
  if (is_power)
    return std::ranges::find(wlan_detail::kPowers, value, &wlan_detail::Power::percent) != wlan_detail::kPowers.end();
  return value >= key.min && value <= key.max;
}

std::optional<WlanDetailInfo> read_settings(const json::Object& asked) {
  WlanDetailInfo info;
  for (const Key& key : kKeys) {
    const auto value = asked.number(key.name);
    if (!value || !is_permitted(key, *value)) {
      if (key.refusal != nullptr) log_error_as(kHandler, "%s", key.refusal);
      return std::nullopt;
    }
    info.*key.field = *value;
  }
  return info;
}

json::ObjectText build_document(const WlanDetailInfo& info) {
  json::ObjectText document = json::success_text();
  for (const Key& key : kKeys) document.add(key.name, info.*key.field);
  return document;
}

std::string_view apply_settings(WlanDetailInfo info) {
  for (const PowerKey& key : kPowerKeys) switch_percent_to_tx_power(key.band, info.*key.field, info.*key.field);
  if (set_wlan_detail_info(info) != 0) return answers::kFailed;
  int mesh = 0;
  if (get_mesh_value(mesh) != 0) {
    log_error_as(kHandler, "Failed to get meshRole");
    return answers::kFailed;
  }
  return mesh == 1 ? answers::wait(100) : answers::wait(50);
}

}  // namespace

int handle_get_wireless_detail_setting(FCGX_Request* request) {
  WlanDetailInfo info;
  if (get_wlan_detail_info(info) != 0) {
    answer_plain(request, answers::kUnusable);
    return 1;
  }
  return answer(request, build_document(info));
}

int handle_set_wireless_detail_setting(FCGX_Request* request, const char* body) {
  const json::Document document = read_object(request, body, kBodyMessages);
  if (!document) return 0;
  const auto info = read_settings(document.root());
  return answer(request, info ? apply_settings(*info) : answers::kUnusable);
}

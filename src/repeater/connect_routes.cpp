// POST /api/v1/repeater/connect.
#include <optional>
#include <string>

#include "answer/answer.h"
#include "answer/read_object.h"
#include "handlers.h"
#include "platform/background.h"
#include "platform/log.h"
#include "repeater/band_connect.h"
#include "repeater/connect_request.h"
#include "repeater/mlo_connect.h"
#include "repeater/network_config.h"
#include "repeater/uci_commands.h"
#include "repeater/uplink_monitor.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/brand.h"

namespace {

// The messages of this file are known by the name of their route's handler.
constexpr const char* kHandler = "handle_repeater_connect";

// False and nullopt: a failure, which is logged.

std::optional<RepeaterConnectInfo> parse_request(const char* body) {
  constexpr BodyMessages kMessages{.no_json = "parse rootJson error\n", .no_object = "parse rootJson error\n"};
  const json::Document document = parse_object(body, kMessages, platform::LogPlace::here(kHandler));
  if (!document) return std::nullopt;
  RepeaterConnectInfo info;
  if (ParseRepeaterJsonData(document.root(), info) != 0) {
    log_error_as(kHandler, "parse json data error\n");
    return std::nullopt;
  }
  log_debug_as(kHandler, "ssid=%s,bssid=%s\n", info.ssid.c_str(), info.bssid.c_str());
  log_debug_as(kHandler, "frequency=%d,encryptType=%d\n", info.frequency, info.encrypt_type);
  log_debug_as(kHandler, "encryptKey=%s,multiRuEnable=%d\n", info.encrypt_key.c_str(), info.multi_ru_enable);
  log_debug_as(kHandler, "multiLinkOperationEnable=%d,tryConnectOrSettingRepeater=%d\n",
               info.multi_link_operation_enable, info.try_connect_or_setting_repeater);
  return info;
}

bool set_multi_ru(int enable) {
  if (enable != 0 && enable != 1) {
    log_error_as(kHandler, "multiRuEnable error\n");
    return false;
  }
  set_wireless("wifi1", "dfs_puncture_en", enable == 1 ? "1" : "0");
  return true;
}

void set_extra_aps_disabled(const char* disabled) {
  for (const Band& band : kBands) set_wireless(band.extra_ap, "disabled", disabled);
}

bool try_connect(const RepeaterConnectInfo& info) {
  if (info.multi_link_operation_enable == kMloOff) {
    if (SetWifiConnectInfoByBand(info) != 0) {
      log_error_as(kHandler, "SetWifiConnectInfoByBand error\n");
      return false;
    }
  } else if (SetWifiConnectInfoByMlo(info) != 0) {
    log_error_as(kHandler, "SetWifiConnectInfoByMlo error\n");
    return false;
  }
  set_aps_disabled("1");
  set_extra_aps_disabled("1");
  set_wireless("ath1", "cactimeout", "0");
  uci_commit("wireless");
  os_system("/sbin/wifi down && /etc/init.d/network restart && /sbin/wifi up &");
  return true;
}

// The try-connect call never completed, or its last poll told that the station is not connected.
void undo_try_connect() {
  for (const Band& band : kBands) delete_wireless(band.station, "mld");
  set_aps_disabled("1");
  uci_command("set repeater.repeater_band.mlo=0");
  uci_commit("wireless", "repeater");
}

void enable_aps() {
  set_aps_disabled("0");
  if (unit::brand().has_second_aps) set_extra_aps_disabled("0");
  uci_commit("wireless");
}

void reload_network(int multi_link) {
  if (multi_link == 2 || multi_link == 3) {  // the platform brings up the MLD of the 2.4+5 GHz variant by itself
    os_system(
        "sleep 3 && ubus call network reload && /sbin/wifi multi_up mld4 mld5 mld6 mld0 && /sbin/wifi multi_up mld7 &");
  } else {
    os_system("sleep 3 && ubus call network reload && /sbin/wifi multi_up mld4 mld5 mld6 mld0 &");
  }
}

bool apply_setting(const RepeaterConnectInfo& info) {
  constexpr std::size_t kStatusSize = 8;
  const std::optional<std::string> status = uci::Section("repeater", "repeater_band").read("status", kStatusSize);
  if (!status) {
    log_error_as(kHandler, "get repeater result error\n");
    return false;
  }
  if (*status != "success") {
    undo_try_connect();
    return true;
  }
  if (StartDhcpServerAfterConnectedSucc() != 0) {
    log_error_as(kHandler, "StartDhcpServerAfterConnect error\n");
    return false;
  }
  enable_aps();
  reload_network(info.multi_link_operation_enable);
  if (CheckWifiConnectStatus() != 0) log_error_as(kHandler, "Wifi monitoring init failed");
  return true;
}

bool connect_repeater(const char* body) {
  if (body == nullptr) {
    log_error_as(kHandler, "request_body is null\n");
    return false;
  }
  if (stop_uplink_monitor()) platform::sleep_seconds(1);
  const std::optional<RepeaterConnectInfo> info = parse_request(body);
  if (!info || !set_multi_ru(info->multi_ru_enable)) return false;
  read_compati_mode(kHandler);  // only told in the log: every mode gets the same answer
  if (info->try_connect_or_setting_repeater == kTryConnect) return try_connect(*info);
  if (info->try_connect_or_setting_repeater == kApplySetting) return apply_setting(*info);
  return true;
}

}  // namespace

int handle_repeater_connect(FCGX_Request* request, const char* body) {
  return answer(request, connect_repeater(body) ? answers::kConnecting : answers::kNotConnected);
}

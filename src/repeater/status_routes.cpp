// GET /api/v1/repeater/connect and GET /api/v1/repeater/wifiresult.
#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "answer/answer.h"
#include "handlers.h"
#include "platform/log.h"
#include "repeater/bands.h"
#include "repeater/status_report.h"
#include "repeater/uci_commands.h"
#include "repeater/uplink_monitor.h"

namespace {

// The messages of this file are known by the name of their route's handler.
constexpr const char* kHandler = "handle_get_repeaterwifiresult_json";

constexpr int kConnected = 0;
constexpr int kNotConnected = 2;

// The station whose association counts; nullptr for a band that does not exist.
const char* find_station(const std::string& mlo, const std::string& band_name) {
  if (mlo != "0") return kStationMld;
  const auto is_named = [&](const Band& band) { return band_name == band.name; };
  const auto band = std::find_if(kBands.begin(), kBands.end(), is_named);
  return band == kBands.end() ? nullptr : band->station;
}

// The setting call goes by what is recorded here.
void record_status(const char* status) {
  uci_command(std::string("set repeater.repeater_band.status='") + status + '\'');
  uci_commit("repeater");
}

int check_connection(const char* station) {
  const std::optional<bool> connected = read_station_connected(station);
  if (!connected) {
    log_error_as(kHandler, "get popen error\n");
    return kNotConnected;
  }
  record_status(*connected ? "success" : "fail");
  if (*connected) {
    log_debug_as(kHandler, "mlo connect success\n");
    return kConnected;
  }
  log_error_as(kHandler, station == std::string_view(kStationMld) ? "mlo connect fail\n" : "slo connect fail\n");
  return kNotConnected;
}

// wifiConnectResult; nullopt when there is no station to ask.
std::optional<int> read_connect_result() {
  const std::optional<std::string> band = read_select_band();
  if (!band) log_error_as(kHandler, "get repeater_band failed.\r\n");
  const std::optional<std::string> mlo = read_mlo_variant();
  if (!mlo) {
    log_error_as(kHandler, "get repeater_band mlo band failed.\n");
    set_aps_disabled("1");
    return kNotConnected;
  }
  const char* station = find_station(*mlo, band.value_or(""));
  if (station == nullptr) return std::nullopt;
  return check_connection(station);
}

}  // namespace

int handle_get_repeaterconnect_json(FCGX_Request* request) { return answer(request, build_connect_report()); }

int handle_get_repeaterwifiresult_json(FCGX_Request* request) {
  json::ObjectText document = json::success_text();
  if (const std::optional<int> result = read_connect_result()) document.add("wifiConnectResult", *result);
  uci_commit("wireless");
  return answer(request, std::move(document));
}

// Look-ups in the tables of the detail settings.
#include "wireless/detail/detail_tables.h"

#include <algorithm>

#include "platform/log.h"

namespace wlan_detail {

const char* htmode_of_width(std::size_t band, int code) {
  const auto row = std::ranges::find(kWidths, code, &Width::code);
  const char* htmode = row == kWidths.end() || band >= row->htmodes.size() ? nullptr : row->htmodes[band];
  if (htmode == nullptr) log_error_as("set_wlan_detail_info", "Invalid grade passed in on getting frequency band");
  return htmode;
}

std::optional<int> width_of_htmode(std::string_view htmode) {
  const auto row = std::ranges::find(kHtmodes, htmode, &Htmode::text);
  if (row == kHtmodes.end()) return std::nullopt;
  return row->code;
}

}  // namespace wlan_detail

namespace {

// The column of a band; nullptr for an unknown band.
using PowerColumn = int wlan_detail::Power::*;

PowerColumn power_column(std::string_view band) {
  if (band == "2.4G") return &wlan_detail::Power::dbm_2g;
  if (band == "5G" || band == "6G") return &wlan_detail::Power::dbm_5g_6g;
  return nullptr;
}

// Looks `value` up in one column and gives the other; one that is not there leaves `out`.
void convert_power(PowerColumn from, PowerColumn to, int value, int& out) {
  const auto row = std::ranges::find(wlan_detail::kPowers, value, from);
  if (row != wlan_detail::kPowers.end()) out = (*row).*to;
}

}  // namespace

int switch_tx_power_to_percent(const char* band, int tx_power_dbm, int& out) {
  const PowerColumn column = power_column(band);
  if (column == nullptr) {
    log_error("Unknow frequency band passwd in :%s", band);
    return 1;
  }
  convert_power(column, &wlan_detail::Power::percent, tx_power_dbm, out);
  return 0;
}

int switch_percent_to_tx_power(const char* band, int percent, int& out) {
  const PowerColumn column = power_column(band);
  if (column == nullptr) {
    log_error("Unknow frequency band passwd in :%s", band);
    return 1;
  }
  convert_power(&wlan_detail::Power::percent, column, percent, out);
  return 0;
}

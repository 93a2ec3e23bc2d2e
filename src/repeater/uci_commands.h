// `uci` calls and option reads that the repeater's steps share.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Runs "uci <arguments>" by the shell: constants and our own numbers only. A failed call stops nothing.
void uci_command(const std::string& arguments);

// Runs "uci set <option>=<value>" with the value as it came, whatever it holds.
void uci_set_value(const std::string& option, const std::string& value);

// "wireless.<section>.<option>", as commands address it.
std::string wireless_option(std::string_view section, std::string_view option);
// "uci set wireless.<section>.<option>=<value>" and "uci delete wireless.<section>.<option>", as above: constants
// only, which the type of a value tells from a text that came.
void set_wireless(const char* section, const char* option, const char* value);
void delete_wireless(std::string_view section, std::string_view option);
// `disabled`, "0" or "1", of the local access point of every band.
void set_aps_disabled(const char* disabled);

// Commits the packages, in this order.
template <class... Package>
void uci_commit(const Package*... packages) {
  (uci_command(std::string("commit ") + packages), ...);
}

// What repeater.repeater_band holds of the uplink; nullopt when it cannot be read.
std::optional<std::string> read_mlo_variant();  // "0" without one, or MloVariant::stored; at most 3 bytes
std::optional<std::string> read_select_band();  // Band::name, or another text; at most 7 bytes

// repeater.compatiMode.value as a number: kStationUsesExtap, or any other value for a station that uses WDS. A failure
// counts as 0 and is logged under `caller`.
inline constexpr int kStationUsesExtap = 1;
int read_compati_mode(const char* caller);

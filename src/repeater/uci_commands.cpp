// `uci` calls and option reads that the repeater's steps share.
#include "repeater/uci_commands.h"

#include <cstdlib>

#include "platform/log.h"
#include "repeater/bands.h"
#include "system_helpers.h"
#include "uci_section.h"

namespace {

uci::Section repeater_band() { return {"repeater", "repeater_band"}; }

}  // namespace

void uci_command(const std::string& arguments) { os_system("uci " + arguments); }

void uci_set_value(const std::string& option, const std::string& value) {
  os_exec({"uci", "set", option + '=' + value});
}

std::string wireless_option(std::string_view section, std::string_view option) {
  return std::string("wireless.").append(section).append(".").append(option);
}

void set_wireless(const char* section, const char* option, const char* value) {
  uci_command("set " + wireless_option(section, option).append("=").append(value));
}

void delete_wireless(std::string_view section, std::string_view option) {
  uci_command("delete " + wireless_option(section, option));
}

void set_aps_disabled(const char* disabled) {
  for (const Band& band : kBands) set_wireless(band.ap, "disabled", disabled);
}

std::optional<std::string> read_mlo_variant() {
  constexpr std::size_t kMloSize = 4;
  return repeater_band().read("mlo", kMloSize);
}

std::optional<std::string> read_select_band() {
  constexpr std::size_t kBandNameSize = 8;
  return repeater_band().read("repeater_select_band", kBandNameSize);
}

int read_compati_mode(const char* caller) {
  constexpr std::size_t kValueSize = 4;
  const std::optional<std::string> value = uci::Section("repeater", "compatiMode").read("value", kValueSize);
  if (!value) log_error_as(caller, "get compatiModevalue error\n");
  return value ? std::atoi(value->c_str()) : 0;
}

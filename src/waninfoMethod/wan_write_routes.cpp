// POST /api/v1/router/wan-info and /api/v1/system/config/waninit.
#include <array>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "answer/answer.h"
#include "answer/read_object.h"
#include "handlers.h"
#include "platform/log.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/operating_mode.h"
#include "waninfoMethod/wan_config.h"
#include "waninfoMethod/wan_modes.h"
#include "waninfoMethod/wan_reload.h"
#include "waninfoMethod/wan_request.h"

namespace {

using answers::Outcome;
using answers::Result;

// The messages of this file are known by the names of the routes' handlers.
constexpr const char* kSetHandler = "handle_set_wanInfo_json";
constexpr const char* kInitHandler = "handle_initWanConfig";

int stored_number(const char* package, const char* section, const char* option) {
  return std::atoi(uci::Section(package, section).read_or(option, 8, "").c_str());
}

void plan_reload(const wanInfo& info) {
  const int acceleration = std::atoi(info.natAccelerationEnable.c_str());
  wan::reload_flags.ecmChangePending = acceleration != stored_number("ecm", "global", "acceleration");
  if (wan::reload_flags.ecmChangePending) wan::reload_flags.ecmEnableWanted = acceleration == 1;
  wan::reload_flags.upnpChangePending = std::atoi(info.uPnPIGD.c_str()) != stored_number("upnpd", "config", "enabled");
}

// A line that has to find its way anew (plain to tunnel and back, or another tunnel) takes longer to come up.
bool needs_long_wait(const wanInfo& info, const std::string& new_key) {
  const std::string stored_mode = uci::Section("network", "wan").read_or("mode", kWanModeSize, "");
  const int old_code = change_wan_mode_string_to_int(stored_mode);
  const int new_code = std::atoi(info.wanMethod.c_str());
  const char old_type = get_wan_mode_type(old_code);
  const char new_type = get_wan_mode_type(new_code);
  log_debug_as(kSetHandler, "cur_wan_mode is [%s],id is [%d],type is [%c]", stored_mode.c_str(), old_code, old_type);
  log_debug_as(kSetHandler, "set_wan_mode is [%s],id is [%d],type is [%c]", info.wanMethod.c_str(), new_code, new_type);
  const std::string old_key = uci::Section("network", "backwan").read_or("waninfobak", 32, "");
  return old_type != new_type || (new_type == 'B' && old_key != new_key);
}

Outcome apply_wan_info(const char* body) {
  constexpr BodyMessages kMessages{.no_json = "jsonObj is NULL.", .no_object = "jsonObj is NULL."};
  const json::Document document = parse_object(body, kMessages, platform::LogPlace::here(kSetHandler));
  const json::Object config = document->object("wanConfig");
  if (!config) return answers::refused(Result::kUnusable);

  const std::optional<wanInfo> request = read_wan_info(config);
  if (!request) return answers::refused(Result::kUnusable);
  const wanInfo& info = *request;
  log_debug_as(kSetHandler, "pppoeUserNameValue = %s, pppoePasswordValue = %s", info.pppoeUserName.c_str(),
               info.pppoePassword.c_str());
  if (checkPPPoeUsernameAndPassword(info.pppoeUserName.c_str(), info.pppoePassword.c_str()) != 0) {
    log_error_as(kSetHandler, "Invalid PPPOE userName and passWord.");
    return answers::refused(Result::kUnusable);
  }
  plan_reload(info);
  log_debug_as(kSetHandler, "%s", describe(info).c_str());
  const std::string key = backup_key(info);
  const bool long_wait = needs_long_wait(info, key);
  uci::Section("network", "backwan").set("waninfobak", key);
  if (set_wanInfoConfig(&info) != 0) return answers::refused(Result::kFailed);
  return answers::accepted(long_wait ? answers::wait(300) : answers::wait(90));
}

struct OptionValue {
  const char* option;
  const char* value;
};

constexpr std::array<OptionValue, 6> kFirstWan{{
    {"mode", "DHCP"},
    {"lastmode", "DHCP"},
    {"proto", "dhcp"},
    {"dhcpv6pd", "0"},
    {"slaac", "0"},
    {"autoflag", "0"},
}};

void write_first_wan() {
  const uci::Section system("system", "@system[0]");
  if (!system.exists()) uci::append("system", "system");
  unit::set_operating_mode(unit::kRouterMode);
  const uci::Section wan("network", "wan");
  if (!wan.exists()) wan.create("interface");
  for (const OptionValue& row : kFirstWan) wan.set(row.option, row.value);
}

// False when there is no mode to leave.
bool reset_wan() {
  const std::optional<std::string> mode = uci::Section("network", "wan").read("mode", kWanModeSize);
  if (!mode) return false;
  log_debug_as(kInitHandler, "currentModeValue = %s, strlen(currentModeValue) = %d", mode->c_str(),
               static_cast<int>(mode->size()));
  if (delLastModePara(mode->c_str(), mode->size()) != 0) return false;
  write_first_wan();
  return true;
}

}  // namespace

int handle_set_wanInfo_json(FCGX_Request* request, const char* body) {
  Outcome outcome = apply_wan_info(body);
  platform::ReadyWork reload = wan::prepare_network_reload();  // after a refused request, too
  if (!reload && outcome.result == Result::kOk) outcome = answers::refused(Result::kFailed);
  answer(request, outcome);
  wan::safe_execute_network_reload(std::move(reload));
  return 0;
}

int handle_initWanConfig(FCGX_Request* request, const char* /*body*/) {
  if (!reset_wan()) return answer(request, answers::kFailed);
  return answer_then(request, answers::wait(420), [] { os_system("reboot &"); });
}

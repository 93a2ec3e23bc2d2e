// Reading and writing of the router's identity and status.
#include "system/router_info.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <utility>

#include "platform/file.h"
#include "platform/log.h"
#include "system/device.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/brand.h"
#include "unit/mesh.h"
#include "unit/operating_mode.h"

namespace {

#define ROUTER_LED_PATH "/sys/devices/platform/soc@0/soc@0:leds/leds/led_router/brightness"

// An option's text; empty, and a line in the log, when it cannot be read.
std::string get_option(const char* package, const char* section, const char* option, std::size_t size,
                       platform::LogPlace place = platform::LogPlace::here()) {
  std::optional<std::string> value = uci::Section(package, section).read(option, size);
  if (!value) log_debug_at(place, "get executed failed.\n");
  return std::move(value).value_or("");
}

// The integer that a status file begins with.
std::optional<int> read_status(const char* path, platform::LogPlace place = platform::LogPlace::here()) {
  const platform::FilePtr file = platform::open_file(path, "r");
  if (!file) {
    log_debug_at(place, "Failed to open fail\n");
    return std::nullopt;
  }
  int status = 0;
  return std::fscanf(file.get(), "%d", &status) == 1 ? std::optional(status) : std::nullopt;
}

int get_routerInfo_currentMode() {
  constexpr int kRouter = 0;
  constexpr int kAccessPoint = 1;
  constexpr int kRepeater = 2;
  const std::optional<unit::OperatingMode> mode = unit::operating_mode();
  if (!mode) log_debug("get executed failed.\n");
  if (mode && mode->is_access_point()) return kAccessPoint;
  return mode && mode->is_repeater() ? kRepeater : kRouter;
}

void get_modes(RouterInfo& info) {
  constexpr int kAgent = 2;
  if (unit::is_agent_by_whole_role()) {
    info.mode_switch_status = info.current_mode = kAgent;
    return;
  }
  get_switch_state(info.mode_switch_status);
  info.current_mode = get_routerInfo_currentMode();
}

std::string get_routerInfo_macaddr() { return get_option("network", "wan", "macaddr", 32); }
std::string get_routerInfo_model() { return get_option("system", "@system[0]", "hostname", 32); }

void get_routerInfo_devicecustom(RouterInfo& info) {
  info.location = std::atoi(get_option("devicecustom", "info", "location", 4).c_str());
  info.location_custom = get_option("devicecustom", "info", "locationCustom", 32);
}

int get_routerInfo_ledStatus() {
  const std::string brightness = platform::read_file(ROUTER_LED_PATH, 8).value_or("");
  return without_line_end(brightness) == "0" ? 0 : 1;
}

void get_routerInfo_deviceInfo(RouterInfo& info) {
  constexpr std::size_t kUrlSize = 256;
  const brands::Brand& brand = unit::brand();
  if (!brands::is_known(brand)) return;
  info.product_id = brand.device_id;
  info.fw_update_url = get_option("hota", "info", brand.update_url_option, kUrlSize);
}

void get_routerInfo_imageArea(RouterInfo& info) {
  constexpr std::size_t kStatusSize = 8;
  os_system("/usr/sbin/testinfo");
  const uci::Section test("test", "test");
  info.image_area_a = test.read_or("statusa", kStatusSize, "Ready");
  info.image_area_b = test.read_or("statusb", kStatusSize, "Ready");
}

std::string local_time_text() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y/%m/%d %H:%M:%S", &parts);
  return text.data();
}

int get_notification() {
  constexpr int kUpdateAvailable = 3;
  const int internet = get_internet_status();
  return internet == 0 && get_hota_status() == 1 ? kUpdateAvailable : internet;
}

}  // namespace

int get_internet_status() {
  const std::optional<int> result = read_status("/tmp/inetchkresult.txt");
  switch (result.value_or(-1)) {
    case 1:
    case 16:
      return 0;
    case 100:
      return 2;
    default:
      return 1;
  }
}

int get_hota_status() {
  if (const brands::Brand& brand = unit::brand(); brands::is_known(brand)) os_system(brand.update_tool.start_check);
  return read_status("/tmp/HotaVersionStatus") == 1 ? 1 : 0;
}

void get_routerInfo_list(RouterInfo& info) {
  info.notification = get_notification();
  get_modes(info);
  info.led_status = get_routerInfo_ledStatus();
  info.mac_address = get_routerInfo_macaddr();
  info.model = get_routerInfo_model();
  get_routerInfo_deviceInfo(info);
  if (getFileInfo("/etc/mtn_version", &info.fw_version, 16) == 0) info.fw_version = without_line_end(info.fw_version);
  info.current_date_time = local_time_text();
  get_routerInfo_imageArea(info);
  get_routerInfo_devicecustom(info);
}

void set_routerInfo_model(const std::string& model) {
  if (!uci::Section("system", "@system[0]").set("hostname", model)) log_debug("set routerInfo model failed.\n");
}

void set_routerInfo_location(int location) {
  constexpr std::size_t kDigits = 3;  // the field's four bytes
  const std::string text = std::to_string(location).substr(0, kDigits);
  if (!uci::Section("devicecustom", "info").set("location", text)) log_debug("set location model failed.\n");
}

void set_routerInfo_locationCustom(const std::string& text) {
  if (!uci::Section("devicecustom", "info").set("locationCustom", text)) log_debug("set location model failed.\n");
}

void set_routerInfo_ledStatus(int status) {
  os_system(status == 1 ? "echo 255 > " ROUTER_LED_PATH : "echo 0 > " ROUTER_LED_PATH);
}

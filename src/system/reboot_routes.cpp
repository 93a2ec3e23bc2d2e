// POST /api/v1/reboot and POST /api/v1/system/config/initialize.
#include <cstdlib>
#include <optional>
#include <string>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "handlers.h"
#include "platform/background.h"
#include "platform/log.h"
#include "platform/repeating_timer.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/brand.h"

namespace {

constexpr int kLongestDelay = 3600;

void run_reboot() { os_system("reboot"); }

// Goes off until the router goes down. The latest request's time counts.
void start_reboot_timer(unsigned int seconds) {
  static auto& timer = *new platform::RepeatingTimer(run_reboot);  // its thread lives as long as the process
  const platform::TimerStart started = timer.set(seconds);
  if (started == platform::TimerStart::kNotMade) std::perror("Creat Timer failed");
  if (started == platform::TimerStart::kNotSet) std::perror("Set Timer failed");
}

// The tunnel's agent must not take the reboot for a change of provider. An empty mode counts, too.
void prepare_map_e() {
  const uci::Section wan("network", "wan");
  const std::string mode = wan.read_or("mode", 16, "");
  if (std::string_view("MAP-E").starts_with(mode)) wan.set("qvmapebootflag", " ");
}

// A router whose line is provisioned anew after the reboot.
bool needs_long_wait() {
  const std::string flag = uci::Section("network", "wan").read_or("autoflag", 8, "");
  const std::string button_mode = uci::Section("system", "@system[0]").read_or("button_mode", 12, "");
  return !flag.empty() && std::atoi(flag.c_str()) == 0 && button_mode == "router_mode";
}

std::string_view brand_wait(int brands::Waits::*seconds) {
  return answers::text_of(answers::kWaits, unit::brand_of_device_id_line().waits_s.*seconds);
}

std::string_view reboot_answer() {
  if (!needs_long_wait()) return answers::wait(120);
  return brand_wait(&brands::Waits::first_reboot);
}

}  // namespace

int handle_reboot(FCGX_Request* request, const char* body) {
  const int delay = json::Document(body)->number("timeTillReboot").value_or(-1);
  if (delay < 0 || delay > kLongestDelay) return answer(request, answers::kUnusable);

  prepare_map_e();
  const std::string_view text = reboot_answer();
  if (delay > 0) {
    start_reboot_timer(static_cast<unsigned int>(delay));
    return answer(request, text);
  }
  return answer_then(request, text, run_reboot);
}

int handle_initialize(FCGX_Request* request, const char* /*body*/) {
  constexpr unsigned int kPause = 2;
  const bool started = platform::start_detached([] {
    platform::sleep_seconds(kPause);
    os_system("/sbin/firstboot -r -y");
  });
  if (!started) {
    log_debug("pthread_create fail");
    return answer(request, answers::kFailed);
  }
  return answer(request, brand_wait(&brands::Waits::factory_reset));
}

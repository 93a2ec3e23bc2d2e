// Any bytes as the file of the weekly reboot: what is read of it can be written and read again.
#include "require.h"
#include "system/reboot_schedule.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto schedule = reboot::parse_schedule(std::string(fuzzing::text_of(data, size)));
  if (!schedule) return 0;
  fuzzing::require(!schedule->time.empty() && schedule->time.size() <= 4, "a time's bound");
  const std::string written =
      std::to_string(schedule->status) + " " + std::to_string(schedule->day_of_week) + " " + schedule->time;
  fuzzing::require(reboot::parse_schedule(written) == schedule, "what was written reads differently");
  return 0;
}

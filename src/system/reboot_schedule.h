// The weekly reboot as its file keeps it.
#pragma once

#include <optional>
#include <string>

namespace reboot {

struct Schedule {
  int status = 0;       // 0 off, 1 on
  int day_of_week = 0;  // 0 every day, 1 to 7 one day, 1 being cron's day 0
  std::string time;     // four digits, hours then minutes

  bool operator==(const Schedule&) const = default;
};

// "STATUS DAY TIME"; nullopt when one of them is missing or a number is none. Of the time, at most four bytes; nothing
// is checked.
std::optional<Schedule> parse_schedule(const std::string& text);

}  // namespace reboot

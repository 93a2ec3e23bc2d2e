// GET and POST /api/v1/wireless/rebootschedule: a weekly reboot in the cron table. Answers are plain JSON.
#include "system/reboot_schedule.h"

#include <array>
#include <cstdio>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "handlers.h"
#include "platform/file.h"
#include "platform/log.h"
#include "platform/text.h"
#include "system_helpers.h"

namespace {

using reboot::Schedule;

constexpr const char* kSchedulePath = "/etc/config/rebootschedule.txt";
constexpr const char* kCronList = "/tmp/tmp_cron_list";  // as the commands below call it

bool is_time(std::string_view text) {
  return text.size() == 4 && platform::is_digits(text) && text.substr(0, 2) <= "23" && text.substr(2) <= "59";
}

std::optional<Schedule> read_schedule(const json::Document& document) {
  const std::optional<int> status = document->number("rebootSchduleStatus");
  const std::optional<int> day = document->number("rebootDayOfWeek");
  const std::optional<std::string> time = document->text("rebootTime");
  if (!status || !day || !time) return std::nullopt;
  if (*status < 0 || *status > 1 || *day < 0 || *day > 7 || !is_time(*time)) return std::nullopt;
  return Schedule{*status, *day, *time};
}

int number_at(const std::string& time, std::size_t position) { return std::stoi(time.substr(position, 2)); }

// Makes the list anew that the next command writes by its name, so that nobody's link, FIFO or file is written through.
bool prepare_cron_list() {
  if (platform::create_private_file(kCronList).valid()) return true;
  log_error("%s cannot be made: %m\n", kCronList);
  return false;
}

// Earlier entries stay: every call adds one more line.
void add_cron_entry(const Schedule& schedule) {
  const std::string weekday = schedule.day_of_week == 0 ? "*" : std::to_string(schedule.day_of_week - 1);
  os_system("crontab -l > /tmp/tmp_cron_list && echo '" + std::to_string(number_at(schedule.time, 2)) + " " +
            std::to_string(number_at(schedule.time, 0)) + " * * " + weekday +
            " reboot &' >> /tmp/tmp_cron_list && crontab /tmp/tmp_cron_list && rm -rf /tmp/tmp_cron_list");
}

// False, with file and cron table as they were, when a file cannot be written.
bool switch_on(const Schedule& schedule) {
  if (!prepare_cron_list()) return false;
  const std::string text = "1 " + std::to_string(schedule.day_of_week) + " " + schedule.time;
  if (!platform::replace_file(kSchedulePath, text)) {
    log_error("%s cannot be written: %m\n", kSchedulePath);
    return false;
  }
  add_cron_entry(schedule);
  return true;
}

// False, with file and cron table as they were, when the list cannot be made.
bool switch_off() {
  if (!prepare_cron_list()) return false;
  os_system("rm -rf /etc/config/rebootschedule.txt");
  os_system(
      "crontab -l | grep -v reboot> /tmp/tmp_cron_list && crontab /tmp/tmp_cron_list && rm -rf /tmp/tmp_cron_list");
  return true;
}

}  // namespace

std::optional<Schedule> reboot::parse_schedule(const std::string& text) {
  Schedule schedule;
  std::array<char, 5> time{};
  if (std::sscanf(text.c_str(), "%9d %9d %4s", &schedule.status, &schedule.day_of_week, time.data()) != 3) {
    return std::nullopt;
  }
  schedule.time = time.data();
  return schedule;
}

int handle_get_reboot_schedule(FCGX_Request* request) {
  Schedule schedule{0, 0, "0000"};
  if (const std::optional<std::string> text = platform::read_file(kSchedulePath)) {
    const std::optional<Schedule> stored = reboot::parse_schedule(*text);
    if (!stored) return answer_plain(request, json::result_text(1));
    schedule = *stored;
  }
  json::ObjectText document = json::success_text();
  document.add("rebootSchduleStatus", schedule.status);
  document.add("rebootDayOfWeek", schedule.day_of_week).add("rebootTime", schedule.time);
  return answer_plain(request, std::move(document));
}

int handle_set_reboot_schedule(FCGX_Request* request, const char* body) {
  const std::optional<Schedule> schedule = read_schedule(json::Document(body));
  if (!schedule) return answer_plain(request, answers::kUnusable);
  const bool is_done = schedule->status == 0 ? switch_off() : switch_on(*schedule);
  return answer_plain(request, is_done ? answers::wait(20) : answers::kUnusable);
}

// One line of the message log, split into time, category and text.
#pragma once

#include <array>
#include <string>
#include <string_view>

// Time and category are cleared once per request only: a shorter value keeps the tail of a longer one before it. Kept
// as it is.
struct LogFields {
  std::array<char, 64> time{};
  std::array<char, 64> category{};
  std::string message;  // at most 255 bytes

  // Whether a line without it has been told in the log. One of each request is enough: the log that these messages go
  // to is the one that is read.
  struct Told {
    bool mark = false;
    bool open = false;
    bool close = false;
  } told;
};

// 0 when the line was split, 1 when it was not (logged, the first time for each reason).
int fill_log_msg_value(std::string_view line, LogFields& fields);

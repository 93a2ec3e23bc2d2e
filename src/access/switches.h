// Options that are switched on and off with 0 and 1.
#pragma once

#include <optional>

#include <fcgiapp.h>

#include "answer/json_reading.h"

// Where a switch stands in requests and answers, and where it is stored.
struct SwitchOption {
  const char* key;
  const char* package;
  const char* section;
  const char* option;
};

// The stored option when it is "0" or "1".
std::optional<bool> stored_switch(const SwitchOption& which);

// Stores "0" or "1". False on failure.
bool set_switch(const SwitchOption& which, bool value);

// Stores what the document says. The `result` to answer: 1 when it is neither 0 nor 1, 2 when it cannot be stored.
int apply_switch(const json::Object& asked, const SwitchOption& which);

// Answers a change: `result` 0 with the time to wait, 1 or 2.
int answer_result(FCGX_Request* request, int result);

// The number that a counting command ("... | wc -l") prints; nullopt when it cannot be run.
std::optional<int> count_lines(const char* command);

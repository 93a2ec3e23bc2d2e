// Options that are switched on and off with 0 and 1.
#pragma once

#include <optional>

#include <fcgiapp.h>

#include "answer/answers.h"
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

// Stores what the document says. kUnusable when it is neither 0 nor 1, kFailed when it cannot be stored.
answers::Result apply_switch(const json::Object& asked, const SwitchOption& which);

// Answers a change: a success with the time to wait.
int answer_result(FCGX_Request* request, answers::Result result);

// The number that a counting command ("... | wc -l") prints; nullopt when it cannot be run.
std::optional<int> read_count(const char* command);

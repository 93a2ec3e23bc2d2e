// Options that are switched on and off with 0 and 1.
#pragma once

#include <optional>
#include <string>

#include "answer/json.h"

// The member when it is present and 0 or 1.
std::optional<int> read_switch(const json::JsonPtr& json, const char* key);

// The stored option when it is 0 or 1.
std::optional<int> stored_switch(const char* package, const char* section, const char* option);

// Stores "0" or "1". False on failure.
bool set_switch(const char* package, const char* section, const char* option, int value);

// The number that a counting command ("... | wc -l") prints; nullopt when it cannot be run.
std::optional<int> count_lines(const char* command);

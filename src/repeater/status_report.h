// The description of the uplink that GET /repeater/connect answers.
#pragma once

#include "answer/json.h"

// Never null. "result" is 2 when something that always exists could not be read, else 0.
json::JsonPtr build_connect_report();

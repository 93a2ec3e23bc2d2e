// The description of the uplink that GET /repeater/connect answers.
#pragma once

#include "answer/json_text.h"

// "result" is 2 when something that always exists could not be read, else 0.
json::ObjectText build_connect_report();

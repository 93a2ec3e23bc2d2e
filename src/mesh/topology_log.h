// The topology log: what the mesh routes saw, in a file that never grows beyond 20 KB.
#pragma once

#include "mesh/topology.h"
#include "platform/console.h"

// Appends one text of less than 1024 bytes to /tmp/topology.log; the file is emptied first when it is over 15 KB.
// What cannot be written is told on the console.
[[gnu::format(printf, 1, 2)]] void topo_log(const char* format, ...);

// Appends "NAME = DOCUMENT" with the JSON text in its pretty form, as topo_log would.
void topo_log_document(const char* name, std::string_view json);

// The whole tree, one line a device or station.
void print_topology(const TopologyInfo& info);

// A tree for tests: a main router with devices around it, a station behind each.
#pragma once

#include <cstddef>
#include <string>

#include "mesh/topology.h"

inline TopologyInfo star_of(std::size_t count) {
  TopologyInfo info;
  info.devices.resize(count);
  info.root = 0;
  for (std::size_t number = 0; number < count; ++number) {
    info.devices[number].mac = "02:00:00:00:00:" + std::to_string(10 + number);
    if (number > 0) {
      info.devices[number].parent = 0;
      info.devices[0].children.push_back(number);
      info.devices[number].stations.push_back({"0C:00:00:00:00:" + std::to_string(10 + number), "Wireless", 2});
    }
  }
  return info;
}

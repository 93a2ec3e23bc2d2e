// Satellites and their clients out of a tree.
#include "mesh/client_scenarios.h"

#include <gtest/gtest.h>

#include "mesh/star.h"

namespace {

TEST(CollectTopologyClients, NumbersSatellitesThroughTheWholeWalk) {
  TopologyInfo info = star_of(4);
  info.devices[0].children = {1, 2};
  info.devices[1].children = {3};
  std::vector<int> numbers;
  for (const ClientRecord& record : collect_topology_clients(info, {})) {
    if (record.isMeshDevice) numbers.push_back(record.agentIndex);
    if (!record.isMeshDevice) {
      EXPECT_EQ(record.connectionType, 5);
    }
  }
  EXPECT_EQ(numbers, (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(collect_topology_clients(star_of(30), {}).size(), 32U);  // 16 satellites, a client each
}

}  // namespace

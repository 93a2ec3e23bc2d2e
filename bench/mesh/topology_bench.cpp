// What reading a mesh's dump costs: a full mesh, and dumps of up to 10 MB in the shapes that could make it more than
// linear in their length.
#include <array>
#include <cstdio>
#include <string>

#include <benchmark/benchmark.h>

#include "mesh/agent_topology.h"
#include "mesh/client_sources.h"
#include "mesh/topology.h"

namespace {

constexpr std::size_t kMegabyte = 1'000'000;
constexpr int kFullMeshAgents = 16;
constexpr int kStationsOfAgent = 64;

std::string mac(int kind, int number) {
  std::array<char, 18> text{};
  std::snprintf(text.data(), text.size(), "02:%02X:%02X:%02X:%02X:20", kind & 255, number >> 16 & 255,
                number >> 8 & 255, number & 255);
  return text.data();
}

std::string device(const std::string& address, const std::string& upstream) {
  return "QCA IEEE 1905.1 device: " + address +
         ", IPv4 address: 192.168.0.7 , MAP Agent\n    Upstream Device: " + upstream +
         "\n        Index   Medium Type   MAC Address\n        0 (eth0)   ETHER   02:00:00:A1:00:2F   up\n"
         "        1 (ath0)   WLAN2G   02:00:00:A1:00:30   up\n        2 (ath1)   WLAN5G   02:00:00:A1:00:31   up\n"
         "        3 (ath2)   WLAN6G   02:00:00:A1:00:32   up\n";
}

std::string remote_table(const std::string& upstream) {
  return "    Remote connections (Directly connected to self)\n"
         "        Interface name   Medium Type  MAC Address        MID\n"
         "        ath13            WLAN5G       " +
         upstream + "  1\n        ath23            WLAN6G       " + upstream + "  1\n";
}

const std::string kRemoteEnd = "\n    Remote connections (Not directly connected to self)\n\n";
const std::string kBridgeHead = "Bridged addresses:\n        Address              Index    Interface Type\n";
const std::string kBlockEnd = "\n    Legacy Devices:\n    Radios:\n        3 radios\n\n";

// A controller and its agents; every station is seen on an interface of its own and on a second one.
std::string mesh(int agents, int stations) {
  const std::string root = mac(0, 1);
  std::string dump = "1905.1 topology dump\n\n" + device(root, "None") + "    0 " + kBridgeHead + kBlockEnd;
  for (int agent = 0; agent < agents; ++agent) {
    for (const std::string& part : {device(mac(1, agent), root), remote_table(root), kRemoteEnd}) dump += part;
    dump.append("    64 ").append(kBridgeHead);
    for (int station = 0; station < stations; ++station) {
      const std::string row = "        " + mac(2 + agent % 200, (agent / 200) * stations + station);
      dump.append(row).append("    ").append(std::to_string(station % 4)).append("        Remote\n");
      dump.append(row).append("    2        Remote\n");
    }
    dump += kBlockEnd;
  }
  return dump;
}

// Many agents, 64 stations each.
std::string many_agents(std::size_t size) {
  const std::size_t one = mesh(kFullMeshAgents, kStationsOfAgent).size() / kFullMeshAgents;
  return mesh(static_cast<int>(size / one), kStationsOfAgent);
}

// One agent with all the stations.
std::string one_agent(std::size_t size) {
  constexpr std::size_t kStationSize = std::size_t{2} * 45;
  return mesh(1, static_cast<int>(size / kStationSize));
}

// A chain as deep as it gets, without a table that ends.
std::string endless_tables(std::size_t size) {
  std::string dump = device(mac(0, 1), "None");
  std::string upstream = mac(0, 1);
  for (int agent = 0; dump.size() < size; ++agent) {
    dump += device(mac(1, agent), upstream) + remote_table(upstream) + "    " + kBridgeHead + "        " +
            mac(2, agent) + "    0        Remote\n";
    upstream = mac(1, agent);
  }
  return dump;
}

// Legacy devices of the main router alone.
std::string legacy_devices(std::size_t size) {
  std::string dump = device(mac(0, 1), "None") + "    Legacy Devices:\n        Interface eth0:\n";
  for (int number = 0; dump.size() < size; ++number) dump += "            " + mac(3, number) + "\n";
  return dump;
}

TopologyInfo parse(const std::string& dump) {
  return parse_topology(dump,
                        {.ip_of_mac = [](const std::string&) { return std::nullopt; }, .mesh_mode = [] { return 2; }});
}

void measure_tree(benchmark::State& state, const std::string& dump) {
  std::size_t devices = 0;
  while (state.KeepRunning()) devices = parse(dump).devices.size();
  state.counters["devices"] = static_cast<double>(devices);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(dump.size()));
  state.SetComplexityN(static_cast<std::int64_t>(dump.size()));
}

void full_mesh(benchmark::State& state) { measure_tree(state, mesh(kFullMeshAgents, kStationsOfAgent)); }

template <std::string (*make)(std::size_t)>
void tree(benchmark::State& state) {
  measure_tree(state, make(static_cast<std::size_t>(state.range(0))));
}

template <std::string (*make)(std::size_t)>
void agents_view(benchmark::State& state) {
  const std::string dump = make(static_cast<std::size_t>(state.range(0)));
  while (state.KeepRunning()) benchmark::DoNotOptimize(parse_agent_topology(DumpLines(dump)).legacy.size());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(dump.size()));
  state.SetComplexityN(static_cast<std::int64_t>(dump.size()));
}

void sizes(benchmark::internal::Benchmark* bench) {
  for (const std::size_t size : {kMegabyte / 10, kMegabyte, 3 * kMegabyte, 10 * kMegabyte}) {
    bench->Arg(static_cast<std::int64_t>(size));
  }
  bench->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);
}

BENCHMARK(full_mesh)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(tree, many_agents)->Apply(sizes);
BENCHMARK_TEMPLATE(tree, one_agent)->Apply(sizes);
BENCHMARK_TEMPLATE(tree, endless_tables)->Apply(sizes);
BENCHMARK_TEMPLATE(tree, legacy_devices)->Apply(sizes);
BENCHMARK_TEMPLATE(agents_view, legacy_devices)->Apply(sizes);

}  // namespace

// What starting a child costs, by the memory that the program holds: a start that copied page tables would grow with
// it.
#include <cstring>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include "platform/process.h"

namespace {

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

// Memory that is really there.
std::unique_ptr<char[]> resident(std::int64_t megabytes) {
  const std::size_t size = static_cast<std::size_t>(megabytes) * kMegabyte;
  std::unique_ptr<char[]> memory(new char[size + 1]);
  std::memset(memory.get(), 1, size + 1);
  return memory;
}

void Run(benchmark::State& state) {
  const auto memory = resident(state.range(0));
  for ([[maybe_unused]] const auto iteration : state) benchmark::DoNotOptimize(platform::run({"/bin/true"}));
}
BENCHMARK(Run)->Arg(0)->Arg(50)->Arg(200)->Unit(benchmark::kMicrosecond)->UseRealTime();

// For comparison: what run() does not do.
void ForkAndExec(benchmark::State& state) {
  const auto memory = resident(state.range(0));
  for ([[maybe_unused]] const auto iteration : state) {
    const pid_t child = fork();
    if (child == 0) {
      execl("/bin/true", "true", nullptr);
      _exit(127);
    }
    waitpid(child, nullptr, 0);
  }
}
BENCHMARK(ForkAndExec)->Arg(0)->Arg(50)->Arg(200)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();

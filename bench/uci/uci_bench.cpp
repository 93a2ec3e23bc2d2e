// What the library's steps and the command cost on a wireless package, and how that grows with its sections.
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <benchmark/benchmark.h>
#include <uci.h>

namespace {

namespace fs = std::filesystem;

struct FreeContext {
  void operator()(uci_context* context) const noexcept { uci_free_context(context); }
};
using ContextPtr = std::unique_ptr<uci_context, FreeContext>;

constexpr int kRouterSections = 40;  // three radios and the access points, backhaul and station interfaces on them

std::string wireless_text(int sections) {
  std::string text;
  for (int index = 0; index < sections; ++index) {
    const std::string number = std::to_string(index);
    text.append("\nconfig wifi-iface 'ath").append(number);
    text.append("'\n\toption device 'wifi").append(std::to_string(index % 3));
    text.append("'\n\toption mode 'ap'\n\toption network 'lan'\n\toption ssid 'network-").append(number);
    text.append("'\n\toption encryption 'sae-mixed'\n\toption key 'a passphrase of some length'\n");
    text.append("\toption hidden '0'\n\toption disabled '0'\n");
    text.append("\tlist basic_rates '6'\n\tlist basic_rates '12'\n\tlist basic_rates '24'\n");
  }
  return text.append("\n");
}

// A folder of packages in memory where there is one, so that the numbers are the library's and not the disk's.
class PackageFolder {
 public:
  explicit PackageFolder(int sections) {
    std::string folder = access("/dev/shm", W_OK) == 0 ? "/dev/shm/uci-bench-XXXXXX" : "/tmp/uci-bench-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) std::abort();
    folder_ = folder;
    fs::create_directories(folder_ / "conf");
    std::ofstream(folder_ / "conf/wireless") << wireless_text(sections);
  }
  PackageFolder(const PackageFolder&) = delete;
  PackageFolder& operator=(const PackageFolder&) = delete;
  ~PackageFolder() { fs::remove_all(folder_); }

  [[nodiscard]] ContextPtr open() const {
    ContextPtr context(uci_alloc_context());
    uci_set_confdir(context.get(), (folder_ / "conf").c_str());
    uci_set_savedir(context.get(), (folder_ / "save").c_str());
    return context;
  }

  [[nodiscard]] std::string path(const char* name) const { return (folder_ / name).string(); }

 private:
  fs::path folder_;
};

void require(benchmark::State& state, int code) {
  if (code != UCI_OK) state.SkipWithError("a call failed");
}

uci_ptr look_up(benchmark::State& state, uci_context* context, std::string& tuple) {
  uci_ptr ptr{};
  require(state, uci_lookup_ptr(context, &ptr, tuple.data(), true));
  return ptr;
}

void load(benchmark::State& state) {
  const PackageFolder folder(static_cast<int>(state.range(0)));
  while (state.KeepRunning()) {
    const ContextPtr context = folder.open();
    require(state, uci_load(context.get(), "wireless", nullptr));
  }
  state.SetComplexityN(state.range(0));
}

// The last section by its name: the longest search.
void look_up_name(benchmark::State& state) {
  const PackageFolder folder(static_cast<int>(state.range(0)));
  const ContextPtr context = folder.open();
  require(state, uci_load(context.get(), "wireless", nullptr));
  const std::string name = "wireless.ath" + std::to_string(state.range(0) - 1) + ".ssid";
  while (state.KeepRunning()) {
    std::string tuple = name;
    benchmark::DoNotOptimize(look_up(state, context.get(), tuple).o);
  }
  state.SetComplexityN(state.range(0));
}

// The last section by its position from the first.
void look_up_position(benchmark::State& state) {
  const PackageFolder folder(static_cast<int>(state.range(0)));
  const ContextPtr context = folder.open();
  require(state, uci_load(context.get(), "wireless", nullptr));
  const std::string name = "wireless.@wifi-iface[" + std::to_string(state.range(0) - 1) + "].ssid";
  while (state.KeepRunning()) {
    std::string tuple = name;
    benchmark::DoNotOptimize(look_up(state, context.get(), tuple).o);
  }
  state.SetComplexityN(state.range(0));
}

// In memory only.
void set(benchmark::State& state) {
  const PackageFolder folder(static_cast<int>(state.range(0)));
  const ContextPtr context = folder.open();
  require(state, uci_load(context.get(), "wireless", nullptr));
  int value = 0;
  while (state.KeepRunning()) {
    std::string tuple = "wireless.ath0.ssid=name-" + std::to_string(++value);
    uci_ptr ptr = look_up(state, context.get(), tuple);
    require(state, uci_set(context.get(), &ptr));
  }
  state.SetComplexityN(state.range(0));
}

// In memory and staged, as `uci set` does, on a package that is loaded.
void set_and_save(benchmark::State& state) {
  const PackageFolder folder(static_cast<int>(state.range(0)));
  const ContextPtr context = folder.open();
  require(state, uci_load(context.get(), "wireless", nullptr));
  int value = 0;
  while (state.KeepRunning()) {
    std::string tuple = "wireless.ath0.ssid=name-" + std::to_string(++value);
    uci_ptr ptr = look_up(state, context.get(), tuple);
    require(state, uci_set(context.get(), &ptr));
    require(state, uci_save(context.get(), ptr.p));
  }
  state.SetComplexityN(state.range(0));
}

// A whole change as the program makes it: load, set, commit.
void set_and_commit(benchmark::State& state) {
  const PackageFolder folder(static_cast<int>(state.range(0)));
  int value = 0;
  while (state.KeepRunning()) {
    const ContextPtr context = folder.open();
    std::string tuple = "wireless.ath0.ssid=name-" + std::to_string(++value);
    uci_ptr ptr = look_up(state, context.get(), tuple);
    require(state, uci_set(context.get(), &ptr));
    require(state, uci_commit(context.get(), &ptr.p, false));
  }
  state.SetComplexityN(state.range(0));
}

// A text merged into the package that it was exported from, every value another one.
void merge_import(benchmark::State& state) {
  const int sections = static_cast<int>(state.range(0));
  const PackageFolder folder(sections);
  std::string text = wireless_text(sections);
  for (std::size_t at = text.find("network-"); at != std::string::npos; at = text.find("network-", at)) text[at] = 'N';
  while (state.KeepRunning()) {
    const ContextPtr context = folder.open();
    uci_package* package = nullptr;
    require(state, uci_load(context.get(), "wireless", &package));
    FILE* stream = fmemopen(text.data(), text.size(), "r");
    require(state, uci_import(context.get(), stream, "wireless", &package, true));
    std::fclose(stream);
  }
  state.SetComplexityN(state.range(0));
}

double seconds_of(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

std::vector<std::string> uci_words(const PackageFolder& folder, std::vector<std::string> words) {
  words.insert(words.begin(), {UCI_COMMAND, "-c", folder.path("conf"), "-t", folder.path("save")});
  return words;
}

// Runs a command: the processor's time in seconds that it took, its start included. What it prints goes to `output`.
double run(benchmark::State& state, std::vector<std::string> words, const std::string& output = "/dev/null") {
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT, 0600);
  pid_t child = 0;
  int status = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  rusage usage{};
  if (status == 0) wait4(child, &status, 0, &usage);
  if (status != 0) state.SkipWithError("the command failed");
  return seconds_of(usage.ru_utime) + seconds_of(usage.ru_stime);
}

// The peak of memory of a `uci` command.
double peak_KiB(benchmark::State& state, const PackageFolder& folder, const std::vector<std::string>& words) {
  std::vector<std::string> command = uci_words(folder, words);
  command.insert(command.begin(), PEAK_COMMAND);
  const std::string told = folder.path("peak");
  run(state, command, told);
  double peak = 0;
  std::ifstream(told) >> peak;
  return peak;
}

void command_get(benchmark::State& state) {
  const PackageFolder folder(static_cast<int>(state.range(0)));
  const std::vector<std::string> words{"get", "wireless.ath0.ssid"};
  while (state.KeepRunning()) state.SetIterationTime(run(state, uci_words(folder, words)));
  state.counters["peak_KiB"] = peak_KiB(state, folder, words);
}

void command_show(benchmark::State& state) {
  const PackageFolder folder(static_cast<int>(state.range(0)));
  while (state.KeepRunning()) state.SetIterationTime(run(state, uci_words(folder, {"show", "wireless"})));
}

void command_set_and_commit(benchmark::State& state) {
  const PackageFolder folder(static_cast<int>(state.range(0)));
  int value = 0;
  const auto set = [&] {
    return run(state, uci_words(folder, {"set", "wireless.ath0.ssid=name-" + std::to_string(++value)}));
  };
  while (state.KeepRunning()) {
    const double seconds = set();
    state.SetIterationTime(seconds + run(state, uci_words(folder, {"commit", "wireless"})));
  }
  set();
  state.counters["peak_KiB"] = peak_KiB(state, folder, {"commit", "wireless"});
}

void sizes(benchmark::internal::Benchmark* bench) {
  for (const int sections : {kRouterSections, 1000, 10000}) bench->Arg(sections);
  bench->Unit(benchmark::kMicrosecond);
}

// Nothing but the start.
void command_start(benchmark::State& state) {
  const PackageFolder folder(0);
  while (state.KeepRunning()) state.SetIterationTime(run(state, uci_words(folder, {"get", "wireless"})));
}

BENCHMARK(command_start)->Unit(benchmark::kMicrosecond)->UseManualTime();
BENCHMARK(command_get)->Apply(sizes)->UseManualTime();
BENCHMARK(command_show)->Apply(sizes)->UseManualTime();
BENCHMARK(command_set_and_commit)->Apply(sizes)->UseManualTime();
BENCHMARK(load)->Apply(sizes)->Complexity(benchmark::oN);
BENCHMARK(look_up_name)->Apply(sizes)->Complexity(benchmark::oN);
BENCHMARK(look_up_position)->Apply(sizes)->Complexity(benchmark::oN);
BENCHMARK(set)->Apply(sizes)->Complexity(benchmark::o1);
BENCHMARK(set_and_save)->Apply(sizes)->Complexity(benchmark::o1);  // the first section, one record
BENCHMARK(set_and_commit)->Apply(sizes)->Complexity(benchmark::oN);
BENCHMARK(merge_import)->Apply(sizes)->Complexity(benchmark::oN);

}  // namespace

// Four processes commit to different sections of one package, a thousand times each; every one reads its own back.
// Once they stage in one folder, as the router's programs do, and once each in its own.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include <uci.h>

namespace {

constexpr int kWriters = 4;
constexpr int kCommits = 1000;

struct FreeContext {
  void operator()(uci_context* context) const noexcept { uci_free_context(context); }
};
using ContextPtr = std::unique_ptr<uci_context, FreeContext>;

ContextPtr open_context(const std::string& folder, const std::string& savedir) {
  ContextPtr context(uci_alloc_context());
  uci_set_confdir(context.get(), (folder + "/conf").c_str());
  uci_set_savedir(context.get(), (folder + savedir).c_str());
  return context;
}

std::string address(int writer) { return "pkg.s" + std::to_string(writer) + ".value"; }

bool write_value(const std::string& folder, const std::string& savedir, int writer, int value) {
  const ContextPtr context = open_context(folder, savedir);
  std::string text = address(writer) + "=" + std::to_string(value);
  uci_ptr ptr{};
  return uci_lookup_ptr(context.get(), &ptr, text.data(), true) == UCI_OK && uci_set(context.get(), &ptr) == UCI_OK &&
         uci_commit(context.get(), &ptr.p, false) == UCI_OK;
}

std::string read_value(const std::string& folder, const std::string& savedir, int writer) {
  const ContextPtr context = open_context(folder, savedir);
  std::string text = address(writer);
  uci_ptr ptr{};
  const bool found = uci_lookup_ptr(context.get(), &ptr, text.data(), true) == UCI_OK && ptr.o != nullptr;
  return found ? ptr.o->v.string : "(none)";
}

int run_writer(const std::string& folder, const std::string& savedir, int writer) {
  for (int value = 1; value <= kCommits; ++value) {
    const bool written = write_value(folder, savedir, writer, value);
    const std::string read = read_value(folder, savedir, writer);
    if (written && read == std::to_string(value)) continue;
    std::printf("writer %d: value %d reads back as %s\n", writer, value, read.c_str());
    return 1;
  }
  return 0;
}

void write_package(const std::string& folder) {
  std::filesystem::create_directories(folder + "/conf");
  std::ofstream file(folder + "/conf/pkg");
  for (int writer = 0; writer < kWriters; ++writer) file << "config thing 's" << writer << "'\n\toption value '0'\n";
}

std::string savedir_of(int writer, bool shared) { return shared ? "/save" : "/save" + std::to_string(writer); }

void start_writer(const std::string& folder, int writer, bool shared) {
  const pid_t child = fork();
  if (child < 0) std::abort();
  if (child > 0) return;
  const int result = run_writer(folder, savedir_of(writer, shared), writer);
  std::fflush(stdout);
  _exit(result);
}

// The number of writers that failed, or whose last value is not there.
int run_round(const std::string& folder, bool shared) {
  write_package(folder);
  for (int writer = 0; writer < kWriters; ++writer) start_writer(folder, writer, shared);
  int failures = 0;
  for (int writer = 0; writer < kWriters; ++writer) {
    int status = 0;
    wait(&status);
    failures += status == 0 ? 0 : 1;
  }
  for (int writer = 0; writer < kWriters; ++writer) {
    if (read_value(folder, savedir_of(writer, shared), writer) != std::to_string(kCommits)) ++failures;
  }
  std::filesystem::remove_all(folder + "/conf");
  std::printf("%d writers, %s, %d commits each: %d failures\n", kWriters,
              shared ? "one staging folder" : "a staging folder each", kCommits, failures);
  std::fflush(stdout);  // before the next round's children inherit it
  return failures;
}

}  // namespace

int main() {
  // In memory where there is some: the locks are on trial, not the disk.
  std::string folder = access("/dev/shm", W_OK) == 0 ? "/dev/shm/uci-writers-XXXXXX" : "/tmp/uci-writers-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) return 2;
  const int failures = run_round(folder, true) + run_round(folder, false);
  std::filesystem::remove_all(folder);
  return failures == 0 ? 0 : 1;
}

// What the code under test logs. The folder of a test program that includes this has a link.cmake with the option
// --wrap for syslog and __syslog_chk.
#pragma once

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <ostream>
#include <string>
#include <syslog.h>
#include <utility>
#include <vector>

struct LogEntry {
  int priority;
  std::string text;  // what stands behind "[FcgiApp][function]:[line] "
  bool operator==(const LogEntry&) const = default;
};

inline void PrintTo(const LogEntry& entry, std::ostream* out) { *out << entry.priority << ' ' << entry.text; }

// Keeps the entries of all threads from its making to its end; one at a time. Every entry goes to the system's log all
// the same.
class CapturedLog {
 public:
  CapturedLog() { set_current(this); }
  CapturedLog(const CapturedLog&) = delete;
  CapturedLog& operator=(const CapturedLog&) = delete;
  ~CapturedLog() { set_current(nullptr); }

  // The texts since the last call, in their order.
  std::vector<std::string> texts() {
    std::vector<std::string> taken;
    for (LogEntry& entry : entries()) taken.push_back(std::move(entry.text));
    return taken;
  }
  std::vector<LogEntry> entries() {
    const std::lock_guard lock(mutex());
    return std::exchange(entries_, {});
  }

  // Keeps the entry and writes it.
  [[gnu::format(printf, 2, 0)]] static void pass_on(int priority, const char* format, va_list arguments) {
    va_list kept;
    va_copy(kept, arguments);
    keep(priority, format, kept);
    va_end(kept);
    vsyslog(priority, format, arguments);
  }

 private:
  [[gnu::format(printf, 2, 0)]] static void keep(int priority, const char* format, va_list arguments) {
    if (current() == nullptr) return;  // without the lock: a daemon may be a copy of a process that held it
    std::array<char, 4096> buffer{};
    std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    const std::string line = buffer.data();
    const std::size_t head = line.find("] ");
    const std::lock_guard lock(mutex());
    CapturedLog* log = current();
    if (log != nullptr) log->entries_.push_back({priority, line.substr(head == std::string::npos ? 0 : head + 2)});
  }
  static std::mutex& mutex() {
    static std::mutex guard;
    return guard;
  }
  static void set_current(CapturedLog* log) {
    const std::lock_guard lock(mutex());
    current() = log;
  }
  static std::atomic<CapturedLog*>& current() {
    static std::atomic<CapturedLog*> log = nullptr;
    return log;
  }
  std::vector<LogEntry> entries_;
};

// Weak: each source of a program that includes this has one.
extern "C" {
[[gnu::weak, gnu::format(printf, 2, 3)]] void __wrap_syslog(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  CapturedLog::pass_on(priority, format, arguments);
  va_end(arguments);
}
[[gnu::weak, gnu::format(printf, 3, 4)]] void __wrap___syslog_chk(int priority, int /*flag*/, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  CapturedLog::pass_on(priority, format, arguments);
  va_end(arguments);
}
}

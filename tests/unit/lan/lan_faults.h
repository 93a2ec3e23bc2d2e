// The LAN's tests where one step fails: what is logged, what is answered, what is skipped. The program is linked with
// --wrap for the functions below (link.cmake).
#pragma once

#include <cerrno>
#include <filesystem>
#include <spawn.h>
#include <string>
#include <sys/types.h>
#include <vector>

#include <gtest/gtest.h>
#include <uci.h>

#include "captured_log.h"
#include "lan/lan_settings.h"
#include "platform/file.h"

struct Faults {
  std::string set;       // the option that uci_set cannot set
  std::string remove;    // the option that uci_delete cannot delete, "*" for all
  std::string add_list;  // the element that uci_add_list cannot add
  std::string del_list;  // the element that uci_del_list cannot delete
  bool spawn = false;    // no child can be made
};
inline Faults faults;

inline bool hits(const std::string& fault, const char* text) {
  return !fault.empty() && text != nullptr && (fault == "*" || fault == text);
}

extern "C" {
int __real_uci_set(uci_context* context, uci_ptr* pointer);
int __real_uci_delete(uci_context* context, uci_ptr* pointer);
int __real_uci_add_list(uci_context* context, uci_ptr* pointer);
int __real_uci_del_list(uci_context* context, uci_ptr* pointer);
int __real_posix_spawnp(pid_t* child, const char* file, const posix_spawn_file_actions_t* actions,
                        const posix_spawnattr_t* attributes, char* const* words, char* const* environment);

[[gnu::weak]] int __wrap_uci_set(uci_context* context, uci_ptr* pointer) {
  return hits(faults.set, pointer->option) ? UCI_ERR_MEM : __real_uci_set(context, pointer);
}
[[gnu::weak]] int __wrap_uci_delete(uci_context* context, uci_ptr* pointer) {
  return hits(faults.remove, pointer->option) ? UCI_ERR_MEM : __real_uci_delete(context, pointer);
}
[[gnu::weak]] int __wrap_uci_add_list(uci_context* context, uci_ptr* pointer) {
  return hits(faults.add_list, pointer->value) ? UCI_ERR_MEM : __real_uci_add_list(context, pointer);
}
[[gnu::weak]] int __wrap_uci_del_list(uci_context* context, uci_ptr* pointer) {
  return hits(faults.del_list, pointer->value) ? UCI_ERR_MEM : __real_uci_del_list(context, pointer);
}
[[gnu::weak]] int __wrap_posix_spawnp(pid_t* child, const char* file, const posix_spawn_file_actions_t* actions,
                                      const posix_spawnattr_t* attributes, char* const* words,
                                      char* const* environment) {
  return faults.spawn ? EAGAIN : __real_posix_spawnp(child, file, actions, attributes, words, environment);
}
// No reload runs in these tests: "Fork failed!" tells that one was asked for.
[[gnu::weak]] pid_t __wrap_fork() {
  errno = EAGAIN;
  return -1;
}
}

inline constexpr const char* kForkFailed = "Fork failed!\n";
inline constexpr const char* kNoLiveAddress = " fial to get ipv4 addr and netsmask\n";

class LanFaults : public ::testing::Test {
 protected:
  void SetUp() override {
    faults = {};
    std::filesystem::create_directories("/etc/config");
    write("/etc/config/dhcp", "config dhcp 'lan'\n\toption ignore '1'\n");
    write("/etc/config/network",
          "config device\n\toption macaddr '00:90:FE:12:34:50'\n\nconfig interface 'lan'\n\toption proto 'static'\n"
          "\toption ipaddr '192.168.0.1'\n\toption netmask '255.255.255.0'\n\toption globalIp '1'\n\toption ipv6 '0'\n"
          "\toption gateway '192.168.0.9'\n\tlist dns '8.8.8.8'\n\tlist dns '9.9.9.9'\n");
    set_mode("ap");
  }
  void TearDown() override { faults = {}; }

  static void write(const char* path, const std::string& text) { ASSERT_TRUE(platform::write_file(path, text)); }
  static void set_mode(const std::string& mode) {
    write("/etc/config/system", "config system\n\toption op_mode '" + mode + "'\n");
  }
  static std::string network() { return platform::read_file("/etc/config/network").value_or(""); }
  static LanSettings settings() {
    LanSettings settings;
    settings.ipv4_address = "192.168.5.1";
    settings.ipv4_mask = "255.255.255.0";
    settings.ipv4_gateway = "192.168.5.9";
    settings.ipv4_dns1 = "1.1.1.1";
    settings.ipv4_dns2 = "2.2.2.2";
    return settings;
  }
  static int apply() {
    LanSettings wanted = settings();
    return cmd_set_lan_network(wanted);
  }
  // The log since it was last asked for.
  std::vector<std::string> logged() { return log_.texts(); }
  std::string last_logged() {
    const std::vector<std::string> texts = logged();
    return texts.empty() ? "(nothing)" : texts.back();
  }

 private:
  CapturedLog log_;
};

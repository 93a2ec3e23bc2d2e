// What the tests of memory that ends share: every allocation of an operation fails in turn, alone and with all behind
// it. No exception leaves the library, nothing leaks (the sanitizer looks at that), no lock stays, and the same
// operation succeeds afterwards.
#pragma once

#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/file.h>
#include <unistd.h>

#include "failing_memory.h"
#include "package_folder.h"

using Operation = std::function<int(uci_context*)>;

class Memory : public PackageFolder {
 protected:
  void SetUp() override {
    PackageFolder::SetUp();
    prepare();
  }

  void prepare() {
    open();  // closes what the last run had open
    put("conf/pkg", kPackage);
    put("save/pkg", "pkg.s.c='3'\n");
    std::filesystem::remove(folder_ / "conf/fresh");
  }

  // One run of `setup`, which has memory, and of `operation`, whose allocation number `at` fails. False when it has
  // none of that number.
  bool run(const Operation& setup, const Operation& operation, int at, Failing failing) {
    prepare();
    EXPECT_EQ(setup(context_.get()), UCI_OK);
    fail_allocation(at, failing);
    const int code = operation(context_.get());
    if (!end_failing()) {
      EXPECT_EQ(code, UCI_OK);
      return false;
    }
    EXPECT_TRUE(code == UCI_ERR_MEM || code == UCI_OK || code == UCI_ERR_IO) << code << " at " << at;
    expect_unlocked("conf/pkg");
    expect_unlocked("save/pkg");
    const std::string text = get("conf/pkg");
    EXPECT_TRUE(text == kPackage || text.starts_with("\nconfig thing 's'\n")) << text;
    if (code != UCI_OK) retry(setup, operation, at);
    return true;
  }

  // In the same context when what was loaded is still there.
  void retry(const Operation& setup, const Operation& operation, int at) {
    if (uci_list_empty(&context_->root)) {
      EXPECT_EQ(setup(context_.get()), UCI_OK);
    }
    EXPECT_EQ(operation(context_.get()), UCI_OK) << "again, after " << at;
  }

  void expect_unlocked(const std::string& name) const {
    const int descriptor = ::open(path(name).c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(flock(descriptor, LOCK_EX | LOCK_NB), 0) << name;
    close(descriptor);
  }

  void break_all(const Operation& setup, const Operation& operation) {
    for (const Failing failing : {Failing::kOnce, Failing::kFromThenOn}) {
      int at = 0;
      while (run(setup, operation, at, failing)) ++at;
      EXPECT_GT(at, 0);
    }
  }

  static constexpr const char* kPackage =
      "config thing 's'\n\toption a 'a value that no short string holds'\n\tlist l 'x'\n\tlist l 'y'\n\nconfig thing\n";
};

inline int nothing(uci_context*) { return UCI_OK; }

inline int load(uci_context* context) { return uci_load(context, "pkg", nullptr); }

inline uci_package* loaded(uci_context* context) { return uci_to_package(list_to_element(context->root.next)); }

inline uci_ptr pointer(uci_context* context, const char* section, const char* option, const char* value) {
  uci_ptr ptr{};
  ptr.p = loaded(context);
  ptr.section = section;
  ptr.option = option;
  ptr.value = value;
  return ptr;
}

template <int (*function)(uci_context*, uci_ptr*)>
Operation edit(const char* section, const char* option, const char* value) {
  return [=](uci_context* context) {
    uci_ptr ptr = pointer(context, section, option, value);
    return function(context, &ptr);
  };
}

inline constexpr const char* kLong = "a text that is longer than what a string keeps in itself";

// Memory that ends: every allocation of every operation fails in turn, alone and with all behind it. No exception
// leaves the library, nothing leaks (the sanitizer looks at that), no lock stays, and the same operation succeeds
// afterwards.
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <new>
#include <string>
#include <sys/file.h>
#include <unistd.h>
#include <vector>

#include "package_folder.h"

namespace {

int allocations_left = -1;  // until one fails; -1: none does
bool fails_from_then_on = false;
bool has_failed = false;

bool must_fail() {
  if (allocations_left < 0) return false;
  if (allocations_left > 0) {
    --allocations_left;
    return false;
  }
  has_failed = true;
  if (!fails_from_then_on) allocations_left = -1;
  errno = ENOMEM;
  return true;
}

}  // namespace

// The linker leads the library's calls here (--wrap).
extern "C" {
void* __real_malloc(std::size_t size);
char* __real_strdup(const char* text);
ssize_t __real_getline(char** line, std::size_t* size, FILE* stream);
DIR* __real_opendir(const char* path);
char* __real_realpath(const char* path, char* result);

void* __wrap_malloc(std::size_t size) { return must_fail() ? nullptr : __real_malloc(size); }
char* __wrap_strdup(const char* text) { return must_fail() ? nullptr : __real_strdup(text); }
ssize_t __wrap_getline(char** line, std::size_t* size, FILE* stream) {
  return must_fail() ? -1 : __real_getline(line, size, stream);
}
DIR* __wrap_opendir(const char* path) { return must_fail() ? nullptr : __real_opendir(path); }
char* __wrap_realpath(const char* path, char* result) { return must_fail() ? nullptr : __real_realpath(path, result); }
}

// Not inlined: where g++ sees into one of these and not into the others, it takes them for a pair that does not match.
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* memory = must_fail() ? nullptr : __real_malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

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
  bool run(const Operation& setup, const Operation& operation, int at, bool from_then_on) {
    prepare();
    EXPECT_EQ(setup(context_.get()), UCI_OK);
    has_failed = false;
    fails_from_then_on = from_then_on;
    allocations_left = at;
    const int code = operation(context_.get());
    allocations_left = -1;
    if (!has_failed) {
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
    for (const bool from_then_on : {false, true}) {
      int at = 0;
      while (run(setup, operation, at, from_then_on)) ++at;
      EXPECT_GT(at, 0);
    }
  }

  static constexpr const char* kPackage =
      "config thing 's'\n\toption a 'a value that no short string holds'\n\tlist l 'x'\n\tlist l 'y'\n\nconfig thing\n";
};

int load(uci_context* context) { return uci_load(context, "pkg", nullptr); }

uci_ptr pointer(uci_context* context, const char* section, const char* option, const char* value) {
  uci_ptr ptr{};
  ptr.p = uci_to_package(list_to_element(context->root.next));
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

constexpr const char* kLong = "a text that is longer than what a string keeps in itself";

int change_all_but_lists(uci_context* context) {
  const std::vector<Operation> changes{edit<uci_set>("s", "b", kLong), edit<uci_set>("n", nullptr, "thing"),
                                       edit<uci_delete>("s", "l", nullptr)};
  int code = load(context);
  for (const Operation& change : changes) code = code == UCI_OK ? change(context) : code;
  return code;
}

int change_much(uci_context* context) {
  const int code = change_all_but_lists(context);
  return code == UCI_OK ? edit<uci_add_list>("s", "a", kLong)(context) : code;
}

TEST_F(Memory, EndsInALoad) {
  break_all([](uci_context*) { return int{UCI_OK}; }, load);
}

TEST_F(Memory, EndsInALookup) {
  break_all([](uci_context*) { return int{UCI_OK}; },
            [](uci_context* context) {
              char tuple[] = "pkg.@thing[-1].a";
              uci_ptr ptr{};
              return uci_lookup_ptr(context, &ptr, tuple, true);
            });
}

TEST_F(Memory, EndsInAnEdit) {
  const std::vector<Operation> edits{
      edit<uci_set>("s", "a", kLong),
      edit<uci_set>("s", "new", kLong),
      edit<uci_set>("s", "l", kLong),
      edit<uci_set>("s", nullptr, "a-type-that-is-longer-than-what-a-string-keeps-in-itself"),
      edit<uci_set>("a_section_name_longer_than_what_a_string_keeps", nullptr, "thing"),
      edit<uci_add_list>("s", "a", kLong),
      edit<uci_add_list>("s", "l", kLong),
      edit<uci_add_list>("s", "new", kLong),
      edit<uci_del_list>("s", "l", "x"),
      edit<uci_delete>("s", nullptr, nullptr),
      edit<uci_delete>("s", "a", nullptr),
      edit<uci_delete>("s", "l", "1"),
      edit<uci_rename>("s", nullptr, "a_section_name_longer_than_what_a_string_keeps"),
      edit<uci_rename>("s", "a", "an_option_name_longer_than_what_a_string_keeps"),
      [](uci_context* context) {
        uci_section* section = nullptr;
        return uci_add_section(context, uci_to_package(list_to_element(context->root.next)), "thing", &section);
      },
      [](uci_context* context) {
        uci_package* package = uci_to_package(list_to_element(context->root.next));
        return uci_reorder_section(context, uci_to_section(list_to_element(package->sections.next)), 1);
      },
  };
  for (const Operation& edit : edits) break_all(load, edit);
}

TEST_F(Memory, ThatEndsInAnEditChangesNothing) {
  for (int at = 0; at < 8; ++at) {
    prepare();
    ASSERT_EQ(load(context_.get()), UCI_OK);
    has_failed = false;
    fails_from_then_on = false;
    allocations_left = at;
    uci_ptr ptr = pointer(context_.get(), "s", "a", kLong);
    const int code = uci_add_list(context_.get(), &ptr);
    allocations_left = -1;
    if (code == UCI_OK) break;
    uci_package* package = uci_to_package(list_to_element(context_->root.next));
    EXPECT_TRUE(uci_list_empty(&package->delta)) << at;
    EXPECT_EQ(value("pkg.s.a"), "a value that no short string holds") << at;
  }
}

TEST_F(Memory, EndsInASave) {
  break_all(change_much, [](uci_context* context) {
    return uci_save(context, uci_to_package(list_to_element(context->root.next)));
  });
}

TEST_F(Memory, EndsInACommit) {
  for (const bool overwrite : {false, true}) {
    break_all(change_much, [overwrite](uci_context* context) {
      uci_package* package = uci_to_package(list_to_element(context->root.next));
      const int code = uci_commit(context, &package, overwrite);
      EXPECT_STREQ(package->e.name, "pkg");
      return code;
    });
  }
}

// What could not be read again is not taken for the package, nor written as one.
TEST_F(Memory, ThatEndsInACommitLosesNothing) {
  constexpr const char* kCommitted =
      "\nconfig thing 's'\n\toption a 'a value that no short string holds'\n\toption c '3'\n"
      "\toption b 'a text that is longer than what a string keeps in itself'\n\nconfig thing\n\nconfig thing 'n'\n\n";
  bool is_through = false;
  for (int at = 0; !is_through; ++at) {
    prepare();
    ASSERT_EQ(change_all_but_lists(context_.get()), UCI_OK);
    uci_package* package = uci_to_package(list_to_element(context_->root.next));
    has_failed = false;
    fails_from_then_on = false;
    allocations_left = at;
    const int code = uci_commit(context_.get(), &package, false);
    allocations_left = -1;
    is_through = !has_failed;
    uci_section* section = nullptr;
    EXPECT_EQ(uci_add_section(context_.get(), package, "thing", &section), UCI_OK);
    EXPECT_STREQ(section->e.name, "cfg04ef3f") << at;
    EXPECT_EQ(uci_delete(context_.get(), std::array{pointer(context_.get(), section->e.name, nullptr, nullptr)}.data()),
              UCI_OK);
    EXPECT_EQ(value("pkg.s.b"), kLong) << at;
    if (code == UCI_OK) continue;
    EXPECT_EQ(uci_commit(context_.get(), &package, true), UCI_OK) << at;
    EXPECT_EQ(get("conf/pkg"), kCommitted) << at;
  }
}

TEST_F(Memory, EndsInARevert) { break_all(change_much, edit<uci_revert>("s", "b", nullptr)); }

int import(uci_context* context, const char* name, bool merge, uci_package** package) {
  char text[] = "config thing 's'\n\toption a '2'\n\tlist l 'z'\n\nconfig thing\n\toption a '3'\n";
  FILE* stream = fmemopen(text, sizeof(text) - 1, "r");
  uci_package* target = merge ? uci_to_package(list_to_element(context->root.next)) : nullptr;
  const int code = uci_import(context, stream, name, &target, true);
  fclose(stream);
  if (package != nullptr) *package = target;
  return code;
}

TEST_F(Memory, EndsInAnImport) {
  const Operation nothing = [](uci_context*) { return int{UCI_OK}; };
  break_all(nothing, [](uci_context* context) { return import(context, "fresh", false, nullptr); });
  break_all(load, [](uci_context* context) { return import(context, "pkg", true, nullptr); });
  break_all(nothing, [](uci_context* context) {
    uci_package* package = nullptr;
    while (!uci_list_empty(&context->root)) uci_unload(context, uci_to_package(list_to_element(context->root.next)));
    const int code = import(context, "fresh", false, &package);
    return code == UCI_OK ? uci_commit(context, &package, true) : code;
  });
}

TEST_F(Memory, EndsInAnExport) {
  break_all(load, [](uci_context* context) {
    FILE* stream = tmpfile();
    const int code = uci_export(context, stream, nullptr, true);
    fclose(stream);
    return code;
  });
}

TEST_F(Memory, EndsInAContextAndItsFolders) {
  const Operation nothing = [](uci_context*) { return int{UCI_OK}; };
  break_all(nothing, [](uci_context*) {
    uci_context* context = uci_alloc_context();
    if (context == nullptr) return int{UCI_ERR_MEM};
    uci_free_context(context);
    return int{UCI_OK};
  });
  break_all(nothing, [](uci_context* context) { return uci_set_savedir(context, kLong); });
  break_all(nothing, [](uci_context* context) { return uci_set_confdir(context, context->confdir); });
  break_all(nothing, [](uci_context* context) { return uci_set_conf2dir(context, kLong); });
  break_all(nothing, [](uci_context* context) {
    const int code = uci_add_delta_path(context, kLong);
    return code == UCI_ERR_DUPLICATE ? int{UCI_OK} : code;
  });
  break_all(nothing, [](uci_context* context) {
    char** names = nullptr;
    const int code = uci_list_configs(context, &names);
    std::free(names);
    return code;
  });
}

TEST_F(Memory, EndsInAnErrorText) {
  put("conf/bad", "config t s\n\toption a-b 1\n");
  EXPECT_EQ(uci_load(context_.get(), "bad", nullptr), UCI_ERR_PARSE);
  for (int at = 0; at < 8; ++at) {
    fails_from_then_on = true;
    allocations_left = at;
    char* text = nullptr;
    uci_get_errorstr(context_.get(), &text, kLong);
    uci_perror(context_.get(), kLong);
    allocations_left = -1;
    std::free(text);
  }
}

TEST_F(Memory, EndsInABatchLine) {
  break_all([](uci_context*) { return int{UCI_OK}; },
            [](uci_context* context) {
              char text[] = "set 'pkg.s.a=a text that is longer than what a string keeps in itself'\n";
              FILE* stream = fmemopen(text, sizeof(text) - 1, "r");
              char* position = nullptr;
              char* word = nullptr;
              int code = uci_parse_argument(context, stream, &position, &word);
              if (code == UCI_OK) code = uci_parse_argument(context, stream, &position, &word);
              fclose(stream);
              return code;
            });
}

}  // namespace

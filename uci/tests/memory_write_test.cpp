// Memory that ends in what writes files: saves, commits, reverts, imports, exports.
#include <array>
#include <cstdio>
#include <vector>

#include "memory_folder.h"

namespace {

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

TEST_F(Memory, EndsInASave) {
  break_all(change_much, [](uci_context* context) { return uci_save(context, loaded(context)); });
}

TEST_F(Memory, EndsInACommit) {
  for (const bool overwrite : {false, true}) {
    break_all(change_much, [overwrite](uci_context* context) {
      uci_package* package = loaded(context);
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
    uci_package* package = loaded(context_.get());
    fail_allocation(at, Failing::kOnce);
    const int code = uci_commit(context_.get(), &package, false);
    is_through = !end_failing();
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
  uci_package* target = merge ? loaded(context) : nullptr;
  const int code = uci_import(context, stream, name, &target, true);
  fclose(stream);
  if (package != nullptr) *package = target;
  return code;
}

TEST_F(Memory, EndsInAnImport) {
  break_all(nothing, [](uci_context* context) { return import(context, "fresh", false, nullptr); });
  break_all(load, [](uci_context* context) { return import(context, "pkg", true, nullptr); });
  break_all(nothing, [](uci_context* context) {
    uci_package* package = nullptr;
    while (!uci_list_empty(&context->root)) uci_unload(context, loaded(context));
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

}  // namespace
